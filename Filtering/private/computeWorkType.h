#pragma once

#include <qel/VoxelTypes.h>

namespace qel::filtering::smoothing::details {

/// The type that holds the sum of a box of `area` voxels.
VoxelTypes computeWorkType(VoxelTypes input, unsigned long area);

/// The largest number where the product does not fit.
unsigned long productOf(unsigned long first, unsigned long second);

} // namespace qel::filtering::smoothing::details
