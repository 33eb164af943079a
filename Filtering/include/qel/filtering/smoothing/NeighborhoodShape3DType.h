#pragma once

namespace qel::filtering::smoothing {

/// Which offsets of a window in a volume count: all, or those within a sphere.
enum NeighborhoodShape3DType
{
    QEL_CUBE = 0,
    QEL_BALL
};

} // namespace qel::filtering::smoothing
