#pragma once

#include <qel/Algorithm.h>

namespace qel::point_operations {

/// Inverts the low bits of each voxel: out(x) = ~in(x), cut to the low `numOfBits` bits.
///
/// `input`: any of the eight integer voxel types, any five sizes; signed voxels are treated as bit patterns.
/// `numOfBits` (default 0): how many bits are kept, at most the width of the voxel; 1 for a binary image, whatever is
/// set. It is a member alone, in no property list. `output`: takes sizes, spacing, origin, voxel type and
/// interpretation of `input`; may be `input` itself.
///
/// Throws RuleException, before any voxel changes, when an image is missing or `input` is not of an integer type.
class QEL_API InvertImage : public BaseAlgorithm
{
    QEL_ALGORITHM(InvertImage)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> numOfBits;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
