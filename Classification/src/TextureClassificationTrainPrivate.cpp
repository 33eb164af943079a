#include "Classification/private/TextureClassificationTrainPrivate.h"

#include "Classification/private/LDAClassifier.h"
#include "Classification/private/textureParametersOf.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/TypeDispatch.h"

#include <qel/ImageModel.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/classification/TextureClassificationTrain.h>

#include <algorithm>

namespace qel::classification {

TextureClassificationTrainPrivate::TextureClassificationTrainPrivate(TextureClassificationTrain& train)
    : AbstractPrivateImplementation(&train)
    , m_train(train)
    , m_input(train.input)
    , m_mask(train.mask)
{}

void TextureClassificationTrainPrivate::run()
{
    Publication const publication(*this);
    TextureClassificationModelPrivate& model = *m_train.classificationModel.get()->getPrivate();
    requireUsable(model);
    segmentation::details::TextureParameters parameters = textureParametersOf(model);
    parameters.requireDirections();

    rules::Sizes const sizes = rules::sizesOf(*m_input);
    bool const isEmpty = std::find(sizes.begin(), sizes.end(), 0ul) != sizes.end();
    bool const isMeasured = !isEmpty && segmentation::details::needsExtrema(parameters);
    setNumOfSteps(isMeasured ? 3 : 2); // and the choice of features, at the end of the frame
    if (!isEmpty && !segmentation::details::settleRanges(parameters, *m_input, this))
        return;
    if (isMeasured)
        nextStep();

    m_classifier.reset(model.classifier->clone());
    if (auto* const lda = dynamic_cast<LDAClassifier*>(m_classifier.get()))
        lda->setMinimumRelativeImprovement(m_train.rejectionFeatureSelection);
    m_classifier->startTraining();
    if (isEmpty) {
        m_classifier->finalize();
    } else {
        auto channels = segmentation::details::channelsOf(parameters.features, parameters.directions.size());
        segmentation::details::addSourceChannels(channels, parameters.directions.size());
        m_plan = std::make_unique<segmentation::details::TexturePlan const>(parameters, channels);
        learn();
    }
    if (isCancelled())
        return;
    nextStep();
    model.classifier = std::move(m_classifier);
    nextStep();
}

void TextureClassificationTrainPrivate::learn()
{
    VoxelTypes const type = m_input->getVoxelType();
    if (m_plan->isVolume())
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureClassificationTrain3DDispatcher,
                                    TextureClassificationTrainPrivate*>()(type, this);
    else
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureClassificationTrain2DDispatcher,
                                    TextureClassificationTrainPrivate*>()(type, this);
}

} // namespace qel::classification
