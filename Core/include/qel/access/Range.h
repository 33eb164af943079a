#pragma once

namespace qel::access {

/// One axis of a block that a parallel loop can split: the voxels [begin, end), and the grain.
///
/// The grain is the largest size at which the axis is left alone. A grain of 0 counts as 1.
struct Range
{
    unsigned long end;
    unsigned long begin;
    unsigned long grain;
};

} // namespace qel::access
