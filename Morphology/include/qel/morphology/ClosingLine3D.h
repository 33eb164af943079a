#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, in space. The element is
/// a line that begins at the voxel.
///
/// `input`: any of the ten real voxel types, any five sizes. `thetaAngle` (degrees, default 0): the azimuth, from the
/// columns towards the rows. `phiAngle` (degrees, default 0): the polar angle, from the plans. `elementSize` (voxels,
/// default 3): the length, one voxel for each step along the axis that the line is closest to; 1 copies. `output`:
/// takes sizes, calibration, voxel type and interpretation of `input`; may be `input` itself.
///
/// DilationLine3D, and then ErosionLine3D in place on `output`, with the line in the opposite direction: what lies
/// along it stays where it is. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type; and InvalidCall when
/// `elementSize` is 0.
///
/// Reference: P. Soille, "Morphological Image Analysis", 2nd edition, 2003, on line segments.
class QEL_API ClosingLine3D : public BaseAlgorithm
{
    QEL_ALGORITHM(ClosingLine3D)

public:
    Property<ImageModel const*> input;
    Property<double> thetaAngle;
    Property<double> phiAngle;
    Property<unsigned int> elementSize;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
