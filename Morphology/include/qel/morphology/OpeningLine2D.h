#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Takes away what is bright and does not hold a structuring element: an erosion and then a dilation, plan by plan. The
/// element is a line that begins at the voxel.
///
/// `input`: any of the ten real voxel types, any five sizes. `orientationAngle` (degrees, default 10): from the columns
/// towards the rows. `elementSize` (voxels, default 3): the length, one voxel for each step along the axis that the
/// line is closest to, whatever its slope; 1 copies. `output`: takes sizes, calibration, voxel type and interpretation
/// of `input`; may be `input` itself.
///
/// ErosionLine2D, and then DilationLine2D in place on `output`, with the line turned by 180 degrees: what lies along it
/// stays where it is. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type; and InvalidCall when
/// `elementSize` is 0.
///
/// Reference: P. Soille, "Morphological Image Analysis", 2nd edition, 2003, on line segments.
class QEL_API OpeningLine2D : public BaseAlgorithm
{
    QEL_ALGORITHM(OpeningLine2D)

public:
    Property<ImageModel const*> input;
    Property<double> orientationAngle;
    Property<unsigned int> elementSize;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
