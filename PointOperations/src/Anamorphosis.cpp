#include <qel/point_operations/Anamorphosis.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(Anamorphosis)

void Anamorphosis::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&inputRange);
    declare(inputRange, "inputRange", math::Vector2<double>(0, 255));
    addInput(&step);
    declare(step, "step", 1.0, AddRuleLimitedValue(2.220446049250313e-16, LIMIT_GREATER));
    addInput(&lut);
    declare(lut, "lut", container::Vector<double>(), AddRuleContainerNoEmpty());
    addInput(&lowIntensity);
    declare(lowIntensity, "lowIntensity", 0.0);
    addInput(&highIntensity);
    declare(highIntensity, "highIntensity", 0.0);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence Anamorphosis::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::point_operations
