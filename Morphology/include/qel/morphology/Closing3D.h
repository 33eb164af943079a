#pragma once

#include <qel/Algorithm.h>
#include <qel/Neighborhood3DType.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, in space. The element is
/// the voxel and its neighbours, `nbIter` times.
///
/// `input`: any of the ten real voxel types, any five sizes. `nbIter` (default 3): how many times, at least once; with
/// QEL_NEIGHBORHOOD3D_26 that is a cube of `2 * nbIter + 1`. `neighborhood3D` (a Neighborhood3DType, default
/// QEL_NEIGHBORHOOD3D_26). `output`: takes sizes, calibration, voxel type and interpretation of `input`; may be `input`
/// itself.
///
/// Dilation3D, and then Erosion3D in place on `output`. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `nbIter` is 0,
/// or the neighbourhood is none of the three.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API Closing3D : public BaseAlgorithm
{
    QEL_ALGORITHM(Closing3D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> nbIter;
    PropertyEnumeration neighborhood3D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
