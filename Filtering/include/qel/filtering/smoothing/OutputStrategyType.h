#pragma once

namespace qel::filtering::smoothing {

/// The voxel type of a smoothed image.
enum OutputStrategyType
{
    QEL_SAME_AS_INPUT = 0,
    QEL_FORCED_TO_FLOAT ///< QEL_FLOAT32
};

} // namespace qel::filtering::smoothing
