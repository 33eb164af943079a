#include <qel/point_operations/ArithmeticValueProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleOfOneRun.h"
#include "Core/private/declareEnumeration.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/EnumInfo.h>

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(ArithmeticValueProcessing)

void ArithmeticValueProcessing::init()
{
    static EnumInfo info("ArithmeticOperatorType", arithmeticOperatorDeclaration);
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&inputValue);
    declare(inputValue, "inputValue", 0.0);
    addInput(&arithmeticOperator);
    declareEnumeration(arithmeticOperator, "arithmeticOperator", ARITHMETIC_ADD, info);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input));
}

void ArithmeticValueProcessing::applyAllRules()
{
    RuleOfOneRun const promotion(
        output, AddRuleEnforceTypePromotionImageValue(&input, &inputValue, promotionModeOf(arithmeticOperator)));
    BaseAlgorithm::applyAllRules();
}

AlgoBorderInfluence ArithmeticValueProcessing::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::point_operations
