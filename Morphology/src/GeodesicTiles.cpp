#include "Morphology/private/GeodesicTiles.h"

#include <tbb/parallel_for.h>

#include <algorithm>

namespace qel::morphology {

namespace {

/// What a tile needs should stay in a core's own cache, and its surface should be small against its content.
constexpr long planarSide[3] = {256, 64, 1};
constexpr long solidSide[3] = {128, 16, 16};

bool runAll(BaseTbbAlgorithm& owner, std::size_t count, std::function<void(std::size_t)> const& run)
{
    tbb::parallel_for(
        std::size_t(0), count, [&](std::size_t i) { run(i); }, tbb::auto_partitioner(), owner.getContext());
    return !owner.isCancelled();
}

} // namespace

void ChangedSides::add(bool atFirstColumn, bool atLastColumn, bool isFirstRow, bool isLastRow, bool isFirstPlan,
                       bool isLastPlan)
{
    bool const columns[3] = {atFirstColumn, true, atLastColumn};
    bool const rows[3] = {isFirstRow, true, isLastRow};
    bool const plans[3] = {isFirstPlan, true, isLastPlan};
    for (int x = 0; x < 3; ++x)
        for (int y = 0; y < 3; ++y)
            for (int z = 0; z < 3; ++z)
                m_sides[x][y][z] = m_sides[x][y][z] || (columns[x] && rows[y] && plans[z]);
}

GeodesicTiles::GeodesicTiles(unsigned long const (&sizes)[3], bool isPlanar)
    : m_sizes{sizes[0], sizes[1], sizes[2]}
    , m_isPlanar(isPlanar)
{
    for (int axis = 0; axis < 3; ++axis) {
        m_side[axis] = isPlanar ? planarSide[axis] : solidSide[axis];
        unsigned long const side = static_cast<unsigned long>(m_side[axis]);
        m_grid[axis] = (sizes[axis] + side - 1) / side;
    }
    m_isAwake = std::make_unique<std::atomic<bool>[]>(count());
}

Tile GeodesicTiles::tile(std::size_t number) const
{
    Tile tile{};
    for (int axis = 0; axis < 3; ++axis) {
        tile.place[axis] = number % m_grid[axis];
        number /= m_grid[axis];
        tile.begin[axis] = static_cast<long>(tile.place[axis]) * m_side[axis];
        tile.size[axis] = std::min(m_side[axis], static_cast<long>(m_sizes[axis]) - tile.begin[axis]);
    }
    return tile;
}

bool GeodesicTiles::forEach(BaseTbbAlgorithm& owner, std::function<void(Tile const&)> const& run) const
{
    return runAll(owner, count(), [&](std::size_t number) { run(tile(number)); });
}

bool GeodesicTiles::untilStable(BaseTbbAlgorithm& owner, std::function<ChangedSides(Tile const&)> const& run)
{
    for (std::size_t number = 0; number < count(); ++number)
        m_isAwake[number].store(true, std::memory_order_relaxed);
    std::size_t const colours = m_isPlanar ? 4 : 8;
    for (std::size_t quiet = 0, colour = 0; quiet < colours; colour = (colour + 1) % colours) {
        std::vector<std::size_t> const awake = takeAwake(colour);
        quiet = awake.empty() ? quiet + 1 : 0;
        bool const isDone = runAll(owner, awake.size(), [&](std::size_t i) {
            Tile const one = tile(awake[i]);
            wakeNeighbours(one, run(one));
        });
        if (!isDone)
            return false;
    }
    return true;
}

void GeodesicTiles::wakeNeighbours(Tile const& tile, ChangedSides const& changes)
{
    std::size_t const deepest = m_isPlanar ? 1 : 2; // tiles of other plans are no neighbours of a planar one
    for (std::size_t z = m_isPlanar ? 1 : 0; z <= deepest; ++z)
        for (std::size_t y = 0; y <= 2; ++y)
            for (std::size_t x = 0; x <= 2; ++x) {
                std::size_t const place[3] = {tile.place[0] + x, tile.place[1] + y, tile.place[2] + z};
                bool const isTile = place[0] > 0 && place[1] > 0 && place[2] > 0 && place[0] <= m_grid[0] &&
                                    place[1] <= m_grid[1] && place[2] <= m_grid[2];
                bool const isItself = x == 1 && y == 1 && z == 1;
                if (isTile && !isItself && changes.has(int(x), int(y), int(z)))
                    m_isAwake[((place[2] - 1) * m_grid[1] + place[1] - 1) * m_grid[0] + place[0] - 1].store(
                        true, std::memory_order_relaxed);
            }
}

std::vector<std::size_t> GeodesicTiles::takeAwake(std::size_t colour)
{
    std::vector<std::size_t> awake;
    std::size_t number = 0;
    for (std::size_t z = 0; z < m_grid[2]; ++z)
        for (std::size_t y = 0; y < m_grid[1]; ++y)
            for (std::size_t x = 0; x < m_grid[0]; ++x, ++number) {
                std::size_t const itsColour = x % 2 + y % 2 * 2 + (m_isPlanar ? 0 : z % 2 * 4);
                if (itsColour == colour && m_isAwake[number].exchange(false, std::memory_order_relaxed))
                    awake.push_back(number);
            }
    return awake;
}

} // namespace qel::morphology
