#include <qel/segmentation/Threshold.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::segmentation {

QEL_DEFINE_ALGORITHM(Threshold)

void Threshold::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&lowLevel);
    declare(lowLevel, "lowLevel", 0.0);
    addInput(&highLevel);
    declare(highLevel, "highLevel", 255.0);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input),
            ASSERT_BINARY_TYPE, AddRuleSetInterpretation(QEL_BINARY));
}

AlgoBorderInfluence Threshold::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::segmentation
