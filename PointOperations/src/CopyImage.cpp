#include <qel/point_operations/CopyImage.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(CopyImage)

void CopyImage::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleCompare<detail::NotEqualTo>(&input),
            AddRuleEnforceSameSizeCalibrationAndType(&input), AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence CopyImage::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::point_operations
