#pragma once

namespace qel::kernel {

/// A step from a voxel to another one, in voxels: columns, rows, plans.
struct Offset3D
{
    long x = 0;
    long y = 0;
    long z = 0;

    bool operator==(Offset3D const& other) const { return x == other.x && y == other.y && z == other.z; }
    bool operator!=(Offset3D const& other) const { return !(*this == other); }
};

} // namespace qel::kernel
