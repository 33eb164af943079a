#pragma once

#include <qel/Algorithm.h>
#include <qel/Neighborhood3DType.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Replaces each voxel by the largest one under a structuring element, in space. The element is the voxel and its
/// neighbours, `nbIter` times.
///
/// `input`: any of the ten real voxel types, any five sizes. `nbIter` (default 3): how many times, at least once; with
/// QEL_NEIGHBORHOOD3D_26 that is a cube of `2 * nbIter + 1`. `neighborhood3D` (a Neighborhood3DType, default
/// QEL_NEIGHBORHOOD3D_26). `output`: takes sizes, calibration, voxel type and interpretation of `input`; may be `input`
/// itself.
///
/// What lies outside of the image never wins: it counts as the lowest finite value of the type. So does a NaN.
///
/// Levels: scalar, and packets on processors with SSE 4.1 for all but the 64-bit integers. The time grows with the
/// logarithm of `nbIter` (with QEL_NEIGHBORHOOD3D_18 with `nbIter`); one pass over memory carries up to 16 iterations.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `nbIter` is 0,
/// or the neighbourhood is none of the three.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API Dilation3D : public BaseAlgorithm
{
    QEL_ALGORITHM(Dilation3D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> nbIter;
    PropertyEnumeration neighborhood3D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
