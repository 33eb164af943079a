#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, in space. The element is
/// a flat disk with a direction of its own.
///
/// `input`: any of the ten real voxel types, any five sizes. `thetaAngle` (degrees, default 0) and `phiAngle` (degrees,
/// default 0): the azimuth and the polar angle of the normal of the disk, from the columns towards the rows and from
/// the plans. `elementSize` (voxels, default 3): the radius; 0 copies. `output`: takes sizes, calibration, voxel type
/// and interpretation of `input`; may be `input` itself.
///
/// DilationDisk3D, and then ErosionDisk3D in place on `output` with the same angles: for slanted disks, which rounding
/// may leave without a centre of symmetry, the result can be shifted by a voxel. The border influence is that of one of
/// them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API ClosingDisk3D : public BaseAlgorithm
{
    QEL_ALGORITHM(ClosingDisk3D)

public:
    Property<ImageModel const*> input;
    Property<double> thetaAngle;
    Property<double> phiAngle;
    Property<unsigned int> elementSize;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
