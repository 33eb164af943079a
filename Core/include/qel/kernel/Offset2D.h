#pragma once

namespace qel::kernel {

/// A step from a voxel to another one of the same plan, in voxels: columns, rows.
struct Offset2D
{
    long x = 0;
    long y = 0;

    bool operator==(Offset2D const& other) const { return x == other.x && y == other.y; }
    bool operator!=(Offset2D const& other) const { return !(*this == other); }
};

} // namespace qel::kernel
