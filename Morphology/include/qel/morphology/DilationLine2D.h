#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Replaces each voxel by the largest one under a structuring element, plan by plan. The element is a line that begins
/// at the voxel.
///
/// `input`: any of the ten real voxel types, any five sizes. `orientationAngle` (degrees, default 10): from the columns
/// towards the rows. `elementSize` (voxels, default 3): the length, one voxel for each step along the axis that the
/// line is closest to, whatever its slope; 1 copies. `output`: takes sizes, calibration, voxel type and interpretation
/// of `input`; may be `input` itself.
///
/// What lies outside of the image never wins: it counts as the lowest finite value of the type. So does a NaN, unless
/// the element is the voxel alone. The element is not reflected: out(p) looks at in(p), and on from there in the
/// direction of the line.
///
/// Levels: scalar, and packets on processors with SSE 4.1 for all but the 64-bit integers. The time grows with the root
/// of the length at most; along axes and diagonals with its logarithm.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type; and InvalidCall when
/// `elementSize` is 0.
///
/// Reference: P. Soille, "Morphological Image Analysis", 2nd edition, 2003, on line segments.
class QEL_API DilationLine2D : public BaseAlgorithm
{
    QEL_ALGORITHM(DilationLine2D)

public:
    Property<ImageModel const*> input;
    Property<double> orientationAngle;
    Property<unsigned int> elementSize;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
