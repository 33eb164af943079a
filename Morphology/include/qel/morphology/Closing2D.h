#pragma once

#include <qel/Algorithm.h>
#include <qel/Neighborhood2DType.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, plan by plan. The
/// element is the voxel and its neighbours in the plan, `nbIter` times.
///
/// `input`: any of the ten real voxel types, any five sizes. `nbIter` (default 3): how many times, at least once; with
/// QEL_NEIGHBORHOOD2D_8 that is a square of `2 * nbIter + 1`, with QEL_NEIGHBORHOOD2D_4 a diamond of that width.
/// `neighborhood2D` (a Neighborhood2DType, default QEL_NEIGHBORHOOD2D_8). `output`: takes sizes, calibration, voxel
/// type and interpretation of `input`; may be `input` itself.
///
/// Dilation2D, and then Erosion2D in place on `output`. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `nbIter` is 0,
/// or the neighbourhood is none of the two.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API Closing2D : public BaseAlgorithm
{
    QEL_ALGORITHM(Closing2D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> nbIter;
    PropertyEnumeration neighborhood2D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
