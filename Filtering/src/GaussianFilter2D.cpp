#include <qel/filtering/smoothing/GaussianFilter2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/declareEnumeration.h"
#include "Filtering/private/GaussianFilter.h"

namespace qel::filtering::smoothing {

QEL_DEFINE_ALGORITHM(GaussianFilter2D)

void GaussianFilter2D::init()
{
    AddRuleLimitedValue<int> const notNegative(0, LIMIT_GREATER_OR_EQUAL);
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&mode);
    declareEnumeration(mode, "mode", QEL_FIR, filteringTypeInfo());
    addInput(&sigmaX);
    declare(sigmaX, "sigmaX", 2, notNegative);
    addInput(&sigmaY);
    declare(sigmaY, "sigmaY", 2, notNegative);
    addInput(&kernelSizeFactorX);
    declare(kernelSizeFactorX, "kernelSizeFactorX", 3, ASSERT_POSITIVE_ONLY);
    addInput(&kernelSizeFactorY);
    declare(kernelSizeFactorY, "kernelSizeFactorY", 3, ASSERT_POSITIVE_ONLY);
    addInput(&outputStrategy);
    declareEnumeration(outputStrategy, "outputStrategy", QEL_SAME_AS_INPUT, outputStrategyTypeInfo());
    addInput(&accurate);
    declare(accurate, "accurate", true);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input),
            AddRuleEnforceSameInterpretation(&input));
}

void GaussianFilter2D::applyAllRules()
{
    RuleOfOneRun const type(output, typeRuleOf(*this));
    BaseAlgorithm::applyAllRules();
}

AlgoBorderInfluence GaussianFilter2D::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(gaussianReach(sigmaX, kernelSizeFactorX), gaussianReach(sigmaY, kernelSizeFactorY), 0, 0,
                               0);
}

} // namespace qel::filtering::smoothing
