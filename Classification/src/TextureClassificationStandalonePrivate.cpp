#include "Classification/private/TextureClassificationStandalonePrivate.h"

#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Classification/private/textonDirections.h"
#include "Classification/private/textureParametersOf.h"
#include "Core/private/Throw.h"
#include "Core/private/storeResult.h"

#include <qel/Exception.h>
#include <qel/Ref.h>
#include <qel/analysis/IntensityExtrema.h>
#include <qel/classification/TextureClassificationApply.h>
#include <qel/classification/TextureClassificationCreate.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/classification/TextureClassificationStandalone.h>
#include <qel/classification/TextureClassificationTrain.h>

#include <limits>

namespace qel::classification {

namespace {

/// The bits of `usedMeasures`.
constexpr unsigned int COOCCURRENCE_OF_DIRECTIONS = 1;
constexpr unsigned int COOCCURRENCE_OVER_DIRECTIONS = 2;
constexpr unsigned int HISTOGRAM = 4;

segmentation::TextureFeatureGroup measuresOf(unsigned int used)
{
    segmentation::TextureFeatureGroup measures;
    auto const addIf = [&](bool isUsed, int first, int last, auto const& isMeant) {
        for (int measure = first; isUsed && measure <= last; ++measure)
            if (isMeant(measure))
                measures.push_back(static_cast<segmentation::TextureFeatureTypes>(measure));
    };
    using segmentation::COOC_FirstMeasure;
    using segmentation::COOC_LastMeasure;
    addIf(used & COOCCURRENCE_OF_DIRECTIONS, COOC_FirstMeasure, COOC_LastMeasure, [](int m) { return m % 4 == 0; });
    addIf(used & COOCCURRENCE_OVER_DIRECTIONS, COOC_FirstMeasure, COOC_LastMeasure, [](int m) { return m % 4 != 0; });
    addIf(used & HISTOGRAM, segmentation::HISTO_FirstMeasure, segmentation::HISTO_LastMeasure,
          [](int) { return true; });
    return measures;
}

} // namespace

TextureClassificationStandalonePrivate::TextureClassificationStandalonePrivate(
    TextureClassificationStandalone& standalone)
    : AbstractPrivateImplementation(&standalone)
    , m_standalone(standalone)
{}

void TextureClassificationStandalonePrivate::run()
{
    Publication const publication(*this);
    setNumOfSteps(5);
    unsigned int const numOfClasses = countClasses();
    if (isCancelled())
        return;
    nextStep();
    auto const model = createModel(numOfClasses);
    if (isCancelled())
        return;
    nextStep();
    if (!settleRangesOf(*model))
        return;
    nextStep();
    train(*model);
    if (isCancelled())
        return;
    nextStep();
    apply(*model);
    if (isCancelled())
        return;
    nextStep();
    storeResult(m_standalone.classificationDetails, model->getInfo());
}

/// The largest label, whatever labels there are.
unsigned int TextureClassificationStandalonePrivate::countClasses()
{
    Ref<analysis::IntensityExtrema> const extrema(analysis::IntensityExtrema::New(this));
    extrema->input = m_standalone.labelImg.get();
    extrema->run();
    if (isCancelled())
        return 0;
    double const largest = extrema->outputMaximum.get().asDouble();
    if (!(largest >= 1))
        QEL_THROW(InvalidCall, "No label defined in label image.");
    double const most = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(largest < most ? largest : most);
}

std::unique_ptr<TextureClassificationModel>
TextureClassificationStandalonePrivate::createModel(unsigned int numOfClasses)
{
    Ref<TextureClassificationCreate> const create(TextureClassificationCreate::New(this));
    TextureClassificationModel* model = nullptr;
    create->computeMode = m_standalone.computeMode.get();
    create->numOfClasses = numOfClasses;
    create->radius = m_standalone.radius.get();
    create->textureFeaturesGroup = measuresOf(m_standalone.usedMeasures);
    create->minGreyLevelCooccurrence = 0.0;
    create->maxGreyLevelCooccurrence = -1.0;
    create->binSizeCooccurrence = -1.0;
    create->minGreyLevelHistogram = 0.0;
    create->maxGreyLevelHistogram = -1.0;
    create->binSizeHistogram = -1.0;
    if (m_standalone.usedMeasures & (COOCCURRENCE_OF_DIRECTIONS | COOCCURRENCE_OVER_DIRECTIONS)) {
        auto const shape = static_cast<TextonShape>(m_standalone.textonShape.get());
        if (m_standalone.computeMode.get() == MODE_2D)
            create->direction2DCollection = textonDirections2D(shape, m_standalone.textonSize, m_standalone.radius);
        else
            create->direction3DCollection = textonDirections3D(shape, m_standalone.textonSize, m_standalone.radius);
    }
    create->classificationModel = &model;
    create->run();
    return std::unique_ptr<TextureClassificationModel>(model);
}

/// Training would settle them on copies, and application needs them in the model. False if the run was cancelled.
bool TextureClassificationStandalonePrivate::settleRangesOf(TextureClassificationModel& model)
{
    TextureClassificationModelPrivate& parameters = *model.getPrivate();
    auto textures = textureParametersOf(parameters);
    if (!segmentation::details::settleRanges(textures, *m_standalone.input.get(), this))
        return false;
    if (textures.hasCooccurrence()) {
        parameters.minGreyLevelCooccurrence = textures.cooccurrence.min;
        parameters.maxGreyLevelCooccurrence = textures.cooccurrence.max;
        parameters.binSizeCooccurrence = textures.cooccurrence.binSize;
    }
    if (textures.hasHistogram()) {
        parameters.minGreyLevelHistogram = textures.histogram.min;
        parameters.maxGreyLevelHistogram = textures.histogram.max;
        parameters.binSizeHistogram = textures.histogram.binSize;
    }
    return true;
}

void TextureClassificationStandalonePrivate::train(TextureClassificationModel& model)
{
    Ref<TextureClassificationTrain> const train(TextureClassificationTrain::New(this));
    train->input = m_standalone.input.get();
    train->mask = m_standalone.labelImg.get();
    train->rejectionFeatureSelection = m_standalone.rejectionFeatureSelection.get();
    train->classificationModel = &model;
    train->run();
}

void TextureClassificationStandalonePrivate::apply(TextureClassificationModel const& model)
{
    Ref<TextureClassificationApply> const apply(TextureClassificationApply::New(this));
    apply->input = m_standalone.input.get();
    apply->classificationModel = &model;
    apply->rejection = m_standalone.rejection.get();
    apply->classifiedImage = m_standalone.classifiedImage.get();
    apply->run();
}

} // namespace qel::classification
