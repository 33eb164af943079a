#include "Morphology/private/euclidianPropagation.h"

#include "Morphology/private/DistanceQueue.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace qel::morphology {

namespace {

double squared(double value) { return value * value; }

using Packet = float __attribute__((vector_size(16)));

/// Which of three voxels may take a smaller distance: bit k for `map[k]` and the square `across[k] + rest`. Most have a
/// smaller one already, and all outside the region: no root is taken for them. A square that is larger by this much, in
/// floats, has a root that is no smaller once rounded. Reads a fourth voxel.
unsigned int nearerOfThree(float const* map, Packet across, double rest)
{
    Packet known;
    std::memcpy(&known, map, sizeof known);
    auto const isNearer = across + static_cast<float>(rest) < known * known * 1.000002f;
    return static_cast<unsigned int>(__builtin_ia32_movmskps(reinterpret_cast<Packet>(isNearer))) & 7;
}

/// Whether squares of distances between voxels are floats of full precision.
bool hasModestSquares(Lattice const& lattice)
{
    bool isModest = true;
    for (int axis = 0; axis < 3; ++axis)
        isModest = isModest && lattice.spacing[axis] > 1e-12 &&
                   lattice.spacing[axis] * static_cast<double>(lattice.size[axis]) < 1e15;
    return isModest;
}

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
    Index const count = plane * plans;
    std::vector<float> coordinates[3];
    for (int axis = 0; axis < 3; ++axis)
        for (unsigned long position = 0; position < lattice.size[axis]; ++position)
            coordinates[axis].push_back(lattice.coordinate(axis, position));

    bool const isModest = hasModestSquares(lattice);

    DistanceQueue<Index> queue;
    for (std::size_t point = 0; point < points.size(); ++point)
        queue.push({points[point].distance, static_cast<Index>(points[point].voxel), static_cast<Index>(point)});

    Entry entry;
    for (unsigned long turn = 0; queue.pop(entry); ++turn) {
        if (turn % 65536 == 0 && isCancelled())
            return;
        if (Entry const* const soon = queue.upcoming(12)) {
            __builtin_prefetch(&points[soon->point]);
            for (std::int64_t plan = -1; plan <= 1; ++plan)
                for (std::int64_t row = -1; row <= 1; ++row)
                    __builtin_prefetch(map + static_cast<std::int64_t>(soon->voxel) +
                                       plan * static_cast<std::int64_t>(plane) +
                                       row * static_cast<std::int64_t>(columns));
        }
        if (map[entry.voxel] < entry.distance)
            continue;

        Index const plan = entry.voxel / plane;
        Index const inPlane = entry.voxel - plan * plane;
        Index const row = inPlane / columns;
        Index const column = inPlane - row * columns;
        float const* const position = points[entry.point].position;
        auto const squareTo = [&](int axis, Index at) {
            return squared(static_cast<double>(position[axis]) - coordinates[axis][at]);
        };
        auto const offer = [&](Index voxel, double square) {
            float const distance = static_cast<float>(std::sqrt(square));
            if (map[voxel] > distance && voxel != entry.voxel) {
                map[voxel] = distance;
                queue.push({distance, voxel, entry.point});
            }
        };

        bool const isQuick = isModest && column > 0 && column + 1 < columns;
        Index const firstColumn = column > 0 ? column - 1 : 0;
        Index const lastColumn = column + 1 < columns ? column + 1 : column;
        double across[3];
        for (Index x = firstColumn; x <= lastColumn; ++x)
            across[x - firstColumn] = squareTo(0, x);
        Packet const acrossInFloats = isQuick ? Packet{static_cast<float>(across[0]), static_cast<float>(across[1]),
                                                       static_cast<float>(across[2]), 0}
                                              : Packet{};
        for (Index z = plan > 0 ? plan - 1 : 0; z <= plan + 1 && z < plans; ++z) {
            double const deep = squareTo(2, z);
            for (Index y = row > 0 ? row - 1 : 0; y <= row + 1 && y < rows; ++y) {
                double const down = squareTo(1, y);
                Index const first = z * plane + y * columns + firstColumn;
                if (isQuick && first + 3 < count) {
                    for (unsigned int near = nearerOfThree(map + first, acrossInFloats, down + deep); near != 0;
                         near &= near - 1) {
                        auto const k = static_cast<Index>(__builtin_ctz(near));
                        offer(first + k, across[k] + down + deep);
                    }
                } else {
                    for (Index k = 0; k <= lastColumn - firstColumn; ++k)
                        offer(first + k, across[k] + down + deep);
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
