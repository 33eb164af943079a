#pragma once

#include <qel/AlgoPrecisionType.h>
#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, in space. The element is
/// a ball.
///
/// `input`: any of the ten real voxel types, any five sizes. `elementSize` (voxels, default 3): the radius; a ball is
/// `2 * elementSize + 1` wide. `precision` (an AlgoPrecisionType, default QEL_ALGO_FAST): QEL_ALGO_PRECISE takes the
/// voxels with x^2 + y^2 + z^2 <= elementSize^2; QEL_ALGO_FAST a polyhedron, 0.6 elementSize steps to the 6 neighbours
/// and 0.3 elementSize to the 18, both cut to integers, and the rest to the 26. Of radius 0 the precise ball copies,
/// and the fast one leaves `output` unwritten. `output`: takes sizes, calibration, voxel type and interpretation of
/// `input`; may be `input` itself.
///
/// DilationBall3D, and then ErosionBall3D in place on `output`. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `precision` is
/// none of the two.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API ClosingBall3D : public BaseAlgorithm
{
    QEL_ALGORITHM(ClosingBall3D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> elementSize;
    PropertyEnumeration precision;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
