#pragma once

#include <qel/Algorithm.h>

namespace qel::point_operations {

/// Shifts the bits of each voxel: out(x) = in(x) << shiftCount, or >> shiftCount.
///
/// `input`: any of the eight integer voxel types, any five sizes. `shiftCount` (bits, default 0): its low 5 bits count
/// for voxels up to 32 bits, its low 6 bits for wider ones. `shiftRight` (default false): a right shift keeps the sign
/// of signed voxels; a left shift drops the high bits. Both are members alone, in no property list. `output`: takes
/// sizes, spacing, origin, voxel type and interpretation of `input`; may be `input` itself.
///
/// Throws RuleException, before any voxel changes, when an image is missing or `input` is not of an integer type.
class QEL_API BitShift : public BaseAlgorithm
{
    QEL_ALGORITHM(BitShift)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> shiftCount;
    Property<bool> shiftRight;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
