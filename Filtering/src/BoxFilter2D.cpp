#include <qel/filtering/smoothing/BoxFilter2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleKeepInputType.h"
#include "Core/private/Rules/RuleOfOneRun.h"
#include "Filtering/private/computeWorkType.h"

namespace qel::filtering::smoothing {

QEL_DEFINE_ALGORITHM(BoxFilter2D)

void BoxFilter2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING, ASSERT_BINARY_OR_VALUE);
    addInput(&boxSize);
    declare(boxSize, "boxSize", math::Vector2<unsigned int>(3, 3));
    addInput(&normalize);
    declare(normalize, "normalize", true);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input),
            AddRuleEnforceInterpretation(QEL_VALUE));
}

AlgoBorderInfluence BoxFilter2D::getAlgoBorderInfluence() const
{
    math::Vector2<unsigned int> const size = boxSize;
    return AlgoBorderInfluence(size[0] / 2, size[1] / 2, 0, 0, 0);
}

void BoxFilter2D::applyAllRules()
{
    auto const addType = [this](Property<ImageModel*>& property) {
        math::Vector2<unsigned int> const size = boxSize;
        if (normalize) {
            AddRuleEnforceSameType{&input}(property);
        } else if (input.get()) {
            VoxelTypes const type =
                details::computeWorkType(input.get()->getVoxelType(), details::productOf(size[0], size[1]));
            pushRule<ImageModel*>(property, boost::make_shared<RuleKeepInputType>(&input, type));
            AddRuleEnforceType{type}(property);
        }
    };
    RuleOfOneRun const type(output, addType);
    BaseAlgorithm::applyAllRules();
}

} // namespace qel::filtering::smoothing
