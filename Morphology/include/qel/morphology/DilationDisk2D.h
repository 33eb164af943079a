#pragma once

#include <qel/AlgoPrecisionType.h>
#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Replaces each voxel by the largest one under a structuring element, plan by plan. The element is a disk.
///
/// `input`: any of the ten real voxel types, any five sizes. `elementSize` (voxels, default 3): the radius; a disk is
/// `2 * elementSize + 1` wide. `precision` (an AlgoPrecisionType, default QEL_ALGO_FAST): QEL_ALGO_PRECISE takes the
/// voxels with x^2 + y^2 <= elementSize^2; QEL_ALGO_FAST an octagon, elementSize / 2 steps to the 8 neighbours and the
/// rest to the 4. Of radius 0 the precise disk copies, and the fast one leaves `output` unwritten. `output`: takes
/// sizes, calibration, voxel type and interpretation of `input`; may be `input` itself.
///
/// What lies outside of the image never wins: it counts as the lowest finite value of the type. So does a NaN, unless
/// the element is the voxel alone.
///
/// Levels: scalar, and packets on processors with SSE 4.1 for all but the 64-bit integers. The time grows with the
/// logarithm of the radius, or for the precise disk with the radius.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, or when `precision` is
/// none of the two.
///
/// Reference: J. Serra, "Image Analysis and Mathematical Morphology", 1982.
class QEL_API DilationDisk2D : public BaseAlgorithm
{
    QEL_ALGORITHM(DilationDisk2D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> elementSize;
    PropertyEnumeration precision;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
