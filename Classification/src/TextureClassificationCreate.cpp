#include <qel/classification/TextureClassificationCreate.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

namespace qel::classification {

QEL_DEFINE_ALGORITHM(TextureClassificationCreate)

void TextureClassificationCreate::init()
{
    container::Vector<double> noRatios(6);
    for (double& ratio : noRatios)
        ratio = -1;

    addInput(&computeMode);
    declareEnumeration(computeMode, "computeMode", MODE_2D, computeModeInfo());
    addInput(&numOfClasses);
    declare(numOfClasses, "numOfClasses", 2u, AddRuleLimitedValue(2, LIMIT_GREATER_OR_EQUAL));
    addInput(&radius);
    declare(radius, "radius", 5u, ASSERT_POSITIVE_ONLY);
    addInput(&textureFeaturesGroup);
    declare(textureFeaturesGroup, "textureFeaturesGroup", {}, AddRuleContainerNoEmpty());
    addInput(&minGreyLevelCooccurrence);
    declare(minGreyLevelCooccurrence, "minGreyLevelCooccurrence", 0.0);
    addInput(&maxGreyLevelCooccurrence);
    declare(maxGreyLevelCooccurrence, "maxGreyLevelCooccurrence", 255.0);
    addInput(&binSizeCooccurrence);
    declare(binSizeCooccurrence, "binSizeCooccurrence", 16.0);
    addInput(&direction2DCollection);
    declare(direction2DCollection, "direction2DCollection", {});
    addInput(&direction3DCollection);
    declare(direction3DCollection, "direction3DCollection", {});
    addInput(&minGreyLevelHistogram);
    declare(minGreyLevelHistogram, "minGreyLevelHistogram", 0.0);
    addInput(&maxGreyLevelHistogram);
    declare(maxGreyLevelHistogram, "maxGreyLevelHistogram", 255.0);
    addInput(&binSizeHistogram);
    declare(binSizeHistogram, "binSizeHistogram", 1.0);
    addInput(&userQuantileRatioHistogram);
    declare(userQuantileRatioHistogram, "userQuantileRatioHistogram", noRatios, AddRuleContainerSize(6));
    addOutput(&classificationModel);
    declare(classificationModel, "classificationModel", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence TextureClassificationCreate::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::classification
