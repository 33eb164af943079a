#pragma once

#include <qel/VoxelTypes.h>

namespace qel::helper {

/// Converts `count` voxels as `convertVoxel` does, in ascending order. Rows need no alignment.
///
/// They may overlap in one way: the target is at least as wide as the source, and both rows end at the same byte, so
/// that a row which was read into the tail of a buffer widens in place.
using VoxelConversion = void (*)(unsigned char const*& source, unsigned char*& target, unsigned long count);

/// The conversion for a pair of voxel types; null for two equal types and where one of them is not among the ten real
/// ones. Pairs whose conversion does the same to the bits are one function.
VoxelConversion voxelConversion(VoxelTypes source, VoxelTypes target);

} // namespace qel::helper
