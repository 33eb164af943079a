#include <qel/point_operations/ArithmeticImageProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleOfOneRun.h"
#include "Core/private/declareEnumeration.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/EnumInfo.h>

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(ArithmeticImageProcessing)

void ArithmeticImageProcessing::init()
{
    static EnumInfo info("ArithmeticOperatorType", arithmeticOperatorDeclaration);
    addInput(&input1);
    declare(input1, "input1", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&input2);
    declare(input2, "input2", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING, AddRuleAssertSameSize(&input1));
    addInput(&arithmeticOperator);
    declareEnumeration(arithmeticOperator, "arithmeticOperator", ARITHMETIC_ADD, info);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input1));
}

void ArithmeticImageProcessing::applyAllRules()
{
    RuleOfOneRun const promotion(
        output, AddRuleEnforceTypePromotionImageImage(&input1, &input2, promotionModeOf(arithmeticOperator)));
    BaseAlgorithm::applyAllRules();
}

AlgoBorderInfluence ArithmeticImageProcessing::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::point_operations
