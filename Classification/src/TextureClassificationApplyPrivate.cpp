#include "Classification/private/TextureClassificationApplyPrivate.h"

#include "Classification/private/LDAClassifier.h"
#include "Classification/private/textureParametersOf.h"
#include "Core/private/TypeDispatch.h"

#include <qel/classification/TextureClassificationApply.h>
#include <qel/classification/TextureClassificationModel.h>

namespace qel::classification {

using segmentation::TextureFeatureTypes;
using segmentation::details::TextureChannels;
using segmentation::details::TextureParameters;

TextureClassificationApplyPrivate::TextureClassificationApplyPrivate(TextureClassificationApply& apply)
    : m_apply(apply)
{
    TextureClassificationModelPrivate const& model = *apply.classificationModel.get()->getPrivate();
    requireUsable(model);
    m_classifier.reset(model.classifier->clone());
    if (auto* const lda = dynamic_cast<LDAClassifier*>(m_classifier.get()))
        lda->setSquaredRejectionDistance(apply.rejection * apply.rejection);

    // Only what the chosen features are made of is measured. A measure that stands twice has its later channel; no one
    // writes to the earlier one, as in the training.
    TextureParameters parameters = textureParametersOf(model);
    TextureChannels channels;
    std::vector<TextureFeatureTypes> usedMeasures;
    long feature = 0;
    for (TextureFeatureTypes const measure : parameters.features) {
        unsigned long const size =
            TextureClassificationModelPrivate::isPerDirection(measure) ? parameters.directions.size() : 1;
        bool isUsed = false;
        for (unsigned long i = 0; i < size; ++i)
            if (m_classifier->isUsedFeature(feature++)) {
                m_selection.push_back(channels.numOfOutputs + i);
                isUsed = true;
            }
        if (!isUsed)
            continue;
        usedMeasures.push_back(measure);
        channels.channelOf[measure] = static_cast<long>(channels.numOfOutputs);
        channels.numOfOutputs += size;
    }
    channels.numOfChannels = channels.numOfOutputs;
    parameters.features = usedMeasures;
    parameters.requireDirections();
    segmentation::details::addSourceChannels(channels, parameters.directions.size());
    m_plan = std::make_unique<segmentation::details::TexturePlan const>(parameters, channels);
}

void TextureClassificationApplyPrivate::run()
{
    VoxelTypes const type = m_apply.input.get()->getVoxelType();
    if (m_plan->isVolume())
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureClassificationApply3DDispatcher,
                                    TextureClassificationApplyPrivate*>()(type, this);
    else
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureClassificationApply2DDispatcher,
                                    TextureClassificationApplyPrivate*>()(type, this);
}

} // namespace qel::classification
