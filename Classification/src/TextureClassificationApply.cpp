#include <qel/classification/TextureClassificationApply.h>

#include "Classification/private/textureParametersOf.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::classification {

QEL_DEFINE_ALGORITHM(TextureClassificationApply)

void TextureClassificationApply::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&classificationModel);
    declare(classificationModel, "classificationModel", nullptr, ASSERT_NOT_NULL);
    addInput(&rejection);
    declare(rejection, "rejection", 3.0, AddRuleLimitedValue(1, LIMIT_GREATER));
    addOutput(&classifiedImage);
    declare(classifiedImage, "classifiedImage", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, QEL_UINT16),
            AddRuleSetInterpretation(QEL_LABEL), AddRuleEnforceType(QEL_UINT16),
            AddRuleEnforceSameSizeAndCalibration(&input));
}

AlgoBorderInfluence TextureClassificationApply::getAlgoBorderInfluence() const
{
    return borderInfluenceOf(classificationModel);
}

} // namespace qel::classification
