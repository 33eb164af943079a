#include <qel/morphology/LocalThicknessMap.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

#include <limits>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(LocalThicknessMap)

void LocalThicknessMap::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE, ASSERT_BINARY,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1), AddRuleAssertDimension(TIME_SERIES, 1));
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, QEL_FLOAT32),
            AddRuleEnforceSameSizeAndCalibration(&input), AddRuleEnforceType(QEL_FLOAT32));
}

AlgoBorderInfluence LocalThicknessMap::getAlgoBorderInfluence() const
{
    unsigned long const everything = std::numeric_limits<unsigned long>::max();
    return AlgoBorderInfluence(everything, everything, everything, 0, 0);
}

} // namespace qel::morphology
