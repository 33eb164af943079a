#include <qel/linear_filtering/FiniteImpulseResponseFilter2D.h>

#include "Core/private/Access/computeExtrema.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Kernel/KernelPrivate.h"
#include "Core/private/declareEnumeration.h"
#include "LinearFiltering/private/FIRFilter.h"

namespace qel::linear_filtering {

QEL_DEFINE_ALGORITHM(FiniteImpulseResponseFilter2D)

void FiniteImpulseResponseFilter2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&kernel2D);
    declare(kernel2D, "kernel2D", kernel::Kernel2D());
    addInput(&outputMode);
    declareEnumeration(outputMode, "outputMode", QEL_OUTPUT_MODE_AUTO, outputModeTypeInfo());
    addInput(&outputCustomType);
    declareEnumeration(outputCustomType, "outputCustomType", QEL_INT16, helper::voxelTypesInfo(),
                       {QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64});
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input));
}

void FiniteImpulseResponseFilter2D::applyAllRules()
{
    RuleOfOneRun const type(output, typeRuleOf(*this));
    BaseAlgorithm::applyAllRules();
}

AlgoBorderInfluence FiniteImpulseResponseFilter2D::getAlgoBorderInfluence() const
{
    long minX, maxX, minY, maxY;
    kernel::computeExtrema(kernel2D.get().getPrivate().offsets, minX, maxX, minY, maxY);
    return AlgoBorderInfluence(reachBelow(minX), reachAbove(maxX), reachBelow(minY), reachAbove(maxY), 0, 0, 0, 0, 0,
                               0);
}

} // namespace qel::linear_filtering
