#include <qel/point_operations/LogicalNotProcessing.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(LogicalNotProcessing)

void LogicalNotProcessing::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence LogicalNotProcessing::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::point_operations
