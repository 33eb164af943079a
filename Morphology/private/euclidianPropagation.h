#pragma once

#include "Morphology/private/Lattice.h"

#include <functional>
#include <vector>

namespace qel::morphology {

/// A point half-way between a voxel of the region and one beside it.
struct InterfacePoint
{
    unsigned long voxel; // of the region
    float distance;      // between the two
    float position[3];
};

/// Spreads the points over the region, from voxel to voxel in the order of distance. `map` holds 0 outside the region,
/// at the voxels of the points the distance to them, and the largest float at all others. `isCancelled` is asked now
/// and then.
void euclidianPropagation(Lattice const& lattice, std::vector<InterfacePoint> const& points, float* map,
                          std::function<bool()> const& isCancelled);

} // namespace qel::morphology
