#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>

#include "Core/private/Access/computeExtrema.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Kernel/KernelPrivate.h"
#include "Core/private/declareEnumeration.h"
#include "LinearFiltering/private/FIRFilter.h"

namespace qel::linear_filtering {

QEL_DEFINE_ALGORITHM(FiniteImpulseResponseFilter3D)

void FiniteImpulseResponseFilter3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&kernel3D);
    declare(kernel3D, "kernel3D", kernel::Kernel3D());
    addInput(&outputMode);
    declareEnumeration(outputMode, "outputMode", QEL_OUTPUT_MODE_AUTO, outputModeTypeInfo());
    addInput(&outputCustomType);
    declareEnumeration(outputCustomType, "outputCustomType", QEL_INT16, helper::voxelTypesInfo(),
                       {QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64});
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input));
}

void FiniteImpulseResponseFilter3D::applyAllRules()
{
    RuleOfOneRun const type(output, typeRuleOf(*this));
    BaseAlgorithm::applyAllRules();
}

AlgoBorderInfluence FiniteImpulseResponseFilter3D::getAlgoBorderInfluence() const
{
    long minX, maxX, minY, maxY, minZ, maxZ;
    kernel::computeExtrema(kernel3D.get().getPrivate().offsets, minX, maxX, minY, maxY, minZ, maxZ);
    return AlgoBorderInfluence(reachBelow(minX), reachAbove(maxX), reachBelow(minY), reachAbove(maxY), reachBelow(minZ),
                               reachAbove(maxZ), 0, 0, 0, 0);
}

} // namespace qel::linear_filtering
