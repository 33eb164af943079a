#include "Morphology/private/euclidianPropagation.h"

#include "Morphology/private/DistanceQueue.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace qel::morphology {

namespace {

double squared(double value) { return value * value; }

/// Voxels and points are numbered by `Index`: half the memory traffic where 32 bits will do.
template <class Index>
void propagate(Lattice const& lattice, std::vector<InterfacePoint> const& points, float* map,
               std::function<bool()> const& isCancelled)
{
    using Entry = typename DistanceQueue<Index>::Entry;
    Index const columns = static_cast<Index>(lattice.size[0]);
    Index const rows = static_cast<Index>(lattice.size[1]);
    Index const plans = static_cast<Index>(lattice.size[2]);
    Index const plane = columns * rows;
    std::vector<float> coordinates[3];
    for (int axis = 0; axis < 3; ++axis)
        for (unsigned long position = 0; position < lattice.size[axis]; ++position)
            coordinates[axis].push_back(lattice.coordinate(axis, position));

    DistanceQueue<Index> queue;
    for (std::size_t point = 0; point < points.size(); ++point)
        queue.push({points[point].distance, static_cast<Index>(points[point].voxel), static_cast<Index>(point)});

    Entry entry;
    for (unsigned long turn = 0; queue.pop(entry); ++turn) {
        if (turn % 65536 == 0 && isCancelled())
            return;
        if (Entry const* const soon = queue.upcoming(12))
            for (std::int64_t plan = -1; plan <= 1; ++plan)
                for (std::int64_t row = -1; row <= 1; ++row)
                    __builtin_prefetch(map + static_cast<std::int64_t>(soon->voxel) +
                                       plan * static_cast<std::int64_t>(plane) +
                                       row * static_cast<std::int64_t>(columns));
        if (map[entry.voxel] < entry.distance)
            continue;

        Index const plan = entry.voxel / plane;
        Index const inPlane = entry.voxel - plan * plane;
        Index const row = inPlane / columns;
        Index const column = inPlane - row * columns;
        float const* const position = points[entry.point].position;
        Index const firstColumn = column > 0 ? column - 1 : 0;
        Index const lastColumn = column + 1 < columns ? column + 1 : column;
        double across[3];
        for (Index x = firstColumn; x <= lastColumn; ++x)
            across[x - firstColumn] = squared(static_cast<double>(position[0]) - coordinates[0][x]);

        for (Index z = plan > 0 ? plan - 1 : 0; z <= plan + 1 && z < plans; ++z) {
            double const deep = squared(static_cast<double>(position[2]) - coordinates[2][z]);
            for (Index y = row > 0 ? row - 1 : 0; y <= row + 1 && y < rows; ++y) {
                double const down = squared(static_cast<double>(position[1]) - coordinates[1][y]);
                Index const line = z * plane + y * columns;
                for (Index x = firstColumn; x <= lastColumn; ++x) {
                    double const square = across[x - firstColumn] + down + deep;
                    double const known = map[line + x];
                    // Most neighbours are nearer already, and all outside the region: no root is taken for them. What
                    // is this much larger is no smaller once rounded to a float.
                    if (square >= known * known * (1 + 1e-6))
                        continue;
                    float const distance = static_cast<float>(std::sqrt(square));
                    if (known > distance && line + x != entry.voxel) {
                        map[line + x] = distance;
                        queue.push({distance, line + x, entry.point});
                    }
                }
            }
        }
    }
}

} // namespace

void euclidianPropagation(Lattice const& lattice, std::vector<InterfacePoint> const& points, float* map,
                          std::function<bool()> const& isCancelled)
{
    constexpr unsigned long most = std::numeric_limits<std::uint32_t>::max() / 2;
    if (lattice.numOfVoxels() < most && points.size() < most)
        propagate<std::uint32_t>(lattice, points, map, isCancelled);
    else
        propagate<std::uint64_t>(lattice, points, map, isCancelled);
}

} // namespace qel::morphology
