#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Replaces each voxel by the largest one under a structuring element, in space. The element is a flat disk with a
/// direction of its own.
///
/// `input`: any of the ten real voxel types, any five sizes. `thetaAngle` (degrees, default 0) and `phiAngle` (degrees,
/// default 0): the azimuth and the polar angle of the normal of the disk, from the columns towards the rows and from
/// the plans. `elementSize` (voxels, default 3): the radius; 0 copies. `output`: takes sizes, calibration, voxel type
/// and interpretation of `input`; may be `input` itself.
///
/// What lies outside of the image never wins: it counts as the lowest finite value of the type. So does a NaN, unless
/// the element is the voxel alone. The element is not reflected.
///
/// Levels: scalar, and packets on processors with SSE 4.1 for all but the 64-bit integers. The time grows with the
/// radius in the planes of the axes, and with its square at most.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API DilationDisk3D : public BaseAlgorithm
{
    QEL_ALGORITHM(DilationDisk3D)

public:
    Property<ImageModel const*> input;
    Property<double> thetaAngle;
    Property<double> phiAngle;
    Property<unsigned int> elementSize;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
