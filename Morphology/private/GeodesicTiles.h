#pragma once

#include "Core/private/Access/RowPosition.h"
#include "Core/private/BaseTbbAlgorithm.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace qel::morphology {

/// A box of one series of an image.
struct Tile
{
    long begin[3]; // column, row, plan
    long size[3];
    std::size_t place[3]; // among the tiles
};

/// Which neighbours count: those at most `axisSteps` steps along axes away, within the plan if `isPlanar`.
struct Connectivity
{
    bool isPlanar;
    int axisSteps;
};

/// Where a tile changed: [side along columns][rows][plans], each side 0 for the low one, 1 for the middle, 2 for the
/// high one.
class ChangedSides
{
public:
    void add(bool atFirstColumn, bool atLastColumn, bool isFirstRow, bool isLastRow, bool isFirstPlan, bool isLastPlan);
    bool has(int column, int row, int plan) const { return m_sides[column][row][plan]; }

private:
    bool m_sides[3][3][3] = {};
};

/// The tiles of one series of an image, and which of them may still change.
///
/// Tiles that touch never run at the same time: those of one colour run side by side, colour after colour. So what a
/// tile reads beyond its sides stands still, and no lock is needed.
class GeodesicTiles
{
public:
    GeodesicTiles(unsigned long const (&sizes)[3], bool isPlanar);

    std::size_t count() const { return m_grid[0] * m_grid[1] * m_grid[2]; }
    Tile tile(std::size_t number) const;

    /// Calls `run` on every tile, in parallel. False if the run was cancelled.
    bool forEach(BaseTbbAlgorithm& owner, std::function<void(Tile const&)> const& run) const;
    /// Calls `run` on tiles, at first on all, then on those whose neighbours changed beside them, until nothing
    /// changes. False if the run was cancelled.
    bool untilStable(BaseTbbAlgorithm& owner, std::function<ChangedSides(Tile const&)> const& run);

private:
    void wakeNeighbours(Tile const& tile, ChangedSides const& changes);
    std::vector<std::size_t> takeAwake(std::size_t colour);

    unsigned long m_sizes[3];
    long m_side[3];
    std::size_t m_grid[3];
    bool m_isPlanar;
    std::unique_ptr<std::atomic<bool>[]> m_isAwake;
};

} // namespace qel::morphology
