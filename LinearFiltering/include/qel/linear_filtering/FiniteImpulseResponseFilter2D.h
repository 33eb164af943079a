#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/linear_filtering/OutputModeType.h>

namespace qel::linear_filtering {

/// Correlates an image with a kernel, plan by plan: out(x) is the sum of w * in(x + o) over the points (o, w) of the
/// kernel, in their order. The kernel is not flipped.
///
/// `input`: any of the ten real voxel types. `kernel2D` (default empty, which gives 0 everywhere): only its points cost
/// time. `outputMode` (an OutputModeType, default QEL_OUTPUT_MODE_AUTO): the voxel type of `output` is that of a sum of
/// two voxels of `input` (int16 for 8- and 16-bit signed and 8-bit unsigned ones, int32 for uint16, int64 for uint32
/// and uint64, else that of `input`), or `outputCustomType` (a real VoxelTypes, default QEL_INT16). `output`: takes
/// sizes and calibration of `input`; may be `input` itself where it keeps its type.
///
/// All is computed in float where `output` has up to 16 bits or is float32, else in double; integers are cut towards
/// zero at the end and do not saturate. Outside of the image, voxels are those of its mirror image, the edge repeated.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of a complex type, `outputMode` or
/// `outputCustomType` is none of those, or `output` is `input` and would have to become another type.
class QEL_API FiniteImpulseResponseFilter2D : public BaseAlgorithm
{
    QEL_ALGORITHM(FiniteImpulseResponseFilter2D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    Property<kernel::Kernel2D> kernel2D;
    PropertyEnumeration outputMode;
    PropertyEnumeration outputCustomType;
    Property<ImageModel*> output;
};

} // namespace qel::linear_filtering
