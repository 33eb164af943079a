#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/linear_filtering/OutputModeType.h>

namespace qel::linear_filtering {

/// Correlates a volume with a kernel: what FiniteImpulseResponseFilter2D does within a plan, in space. `kernel3D`
/// stands for `kernel2D`; everything else is the same.
class QEL_API FiniteImpulseResponseFilter3D : public BaseAlgorithm
{
    QEL_ALGORITHM(FiniteImpulseResponseFilter3D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    Property<kernel::Kernel3D> kernel3D;
    PropertyEnumeration outputMode;
    PropertyEnumeration outputCustomType;
    Property<ImageModel*> output;
};

} // namespace qel::linear_filtering
