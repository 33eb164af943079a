#pragma once

#include <qel/AlgoPrecisionType.h>
#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Fills what is dark and does not hold a structuring element: a dilation and then an erosion, plan by plan. The
/// element is a disk.
///
/// `input`: any of the ten real voxel types, any five sizes. `elementSize` (voxels, default 3): the radius; a disk is
/// `2 * elementSize + 1` wide. `precision` (an AlgoPrecisionType, default QEL_ALGO_FAST): QEL_ALGO_PRECISE takes the
/// voxels with x^2 + y^2 <= elementSize^2; QEL_ALGO_FAST an octagon, elementSize / 2 steps to the 8 neighbours and the
/// rest to the 4. Of radius 0 the precise disk copies, and the fast one leaves `output` unwritten. `output`: takes
/// sizes, calibration, voxel type and interpretation of `input`; may be `input` itself.
///
/// DilationDisk2D, and then ErosionDisk2D in place on `output`. The border influence is that of one of them.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `precision` is
/// none of the two.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API ClosingDisk2D : public BaseAlgorithm
{
    QEL_ALGORITHM(ClosingDisk2D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> elementSize;
    PropertyEnumeration precision;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
