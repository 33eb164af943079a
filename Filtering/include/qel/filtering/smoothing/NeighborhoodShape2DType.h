#pragma once

namespace qel::filtering::smoothing {

/// Which offsets of a window in a plan count: all, or those within a circle.
enum NeighborhoodShape2DType
{
    QEL_SQUARE = 0,
    QEL_DISK
};

} // namespace qel::filtering::smoothing
