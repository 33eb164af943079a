#include "Classification/private/TextureClassificationModelPrivate.h"
#include "Classification/private/newModel.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/classification/TextureClassificationCreate.h>

namespace qel::classification {

namespace {

constexpr double DEFAULT_RATIOS[] = {0.2, 0.3, 0.4, 0.6, 0.7, 0.8};

void fill(TextureClassificationModelPrivate& model, TextureClassificationCreate const& create)
{
    model.computeMode = static_cast<ComputeMode>(create.computeMode.get());
    model.numOfClasses = static_cast<int>(create.numOfClasses.get());
    model.radius = create.radius;
    model.measures = create.textureFeaturesGroup.get();
    model.minGreyLevelCooccurrence = create.minGreyLevelCooccurrence;
    model.maxGreyLevelCooccurrence = create.maxGreyLevelCooccurrence;
    model.binSizeCooccurrence = create.binSizeCooccurrence;
    model.directions2D = create.direction2DCollection.get();
    model.directions3D = create.direction3DCollection.get();
    model.minGreyLevelHistogram = create.minGreyLevelHistogram;
    model.maxGreyLevelHistogram = create.maxGreyLevelHistogram;
    model.binSizeHistogram = create.binSizeHistogram;
    model.userQuantileRatios = create.userQuantileRatioHistogram.get();
    double const* ratio = DEFAULT_RATIOS;
    for (double& value : model.userQuantileRatios) {
        if (!(value > 0))
            value = *ratio;
        ++ratio;
    }
    model.classifier->init(static_cast<long>(model.getLearningSpaceDimension()), model.numOfClasses);
}

class TextureClassificationCreateRunner : public ScalarRunner<TextureClassificationCreate>
{
protected:
    void runOn(TextureClassificationCreate& create) const override
    {
        auto model = newModel();
        if (model->getPrivate() == nullptr)
            QEL_THROW(MemoryError, "Invalid private implementation of the new TextureClassificationModel.");
        try {
            fill(*model->getPrivate(), create);
        } catch (std::bad_alloc const&) {
            refuseModelForMemory();
        }
        *create.classificationModel.get() = model.release();
    }
};

} // namespace

QEL_REGISTER_RUNNER(TextureClassificationCreate, TextureClassificationCreateRunner)

} // namespace qel::classification
