#include <qel/point_operations/LogicalValueProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "PointOperations/private/BinaryLogicalOperators.h"

#include <qel/EnumInfo.h>

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(LogicalValueProcessing)

void LogicalValueProcessing::init()
{
    static EnumInfo info("BinaryLogicalOperatorType", binaryLogicalOperatorDeclaration);
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER);
    addInput(&inputValue);
    declare(inputValue, "inputValue", 0l);
    addInput(&logicalOperator);
    declareEnumeration(logicalOperator, "logicalOperator", LOGICAL_AND, info);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence LogicalValueProcessing::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::point_operations
