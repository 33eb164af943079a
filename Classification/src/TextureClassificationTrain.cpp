#include <qel/classification/TextureClassificationTrain.h>

#include "Classification/private/textureParametersOf.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::classification {

QEL_DEFINE_ALGORITHM(TextureClassificationTrain)

void TextureClassificationTrain::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&mask);
    declare(mask, "mask", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER, ASSERT_LABEL,
            AddRuleAssertDimensionImage(&input, COLUMNS, ROWS, PLANS, TIME_SERIES));
    addInput(&rejectionFeatureSelection);
    declare(rejectionFeatureSelection, "rejectionFeatureSelection", 0.05,
            AddRuleLimitedValue(0, LIMIT_GREATER_OR_EQUAL));
    addInput(&finalizeTraining);
    declare(finalizeTraining, "finalizeTraining", true);
    addInput(&classificationModel);
    declare(classificationModel, "classificationModel", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence TextureClassificationTrain::getAlgoBorderInfluence() const
{
    return borderInfluenceOf(classificationModel);
}

} // namespace qel::classification
