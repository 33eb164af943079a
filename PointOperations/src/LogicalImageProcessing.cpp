#include <qel/point_operations/LogicalImageProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "PointOperations/private/BinaryLogicalOperators.h"

#include <qel/EnumInfo.h>

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(LogicalImageProcessing)

void LogicalImageProcessing::init()
{
    static EnumInfo info("BinaryLogicalOperatorType", binaryLogicalOperatorDeclaration);
    addInput(&input1);
    declare(input1, "input1", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER);
    addInput(&input2);
    declare(input2, "input2", nullptr, ASSERT_NOT_NULL, AddRuleAssertSameType(&input1), AddRuleAssertSameSize(&input1));
    addInput(&logicalOperator);
    declareEnumeration(logicalOperator, "logicalOperator", LOGICAL_AND, info);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input1),
            AddRuleEnforceSameInterpretation(&input1));
}

AlgoBorderInfluence LogicalImageProcessing::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::point_operations
