#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/Access/View.h"
#include "Morphology/private/GeodesicTiles.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace qel::morphology {

/// Grows towards larger values, under a limit.
template <class T> struct GeodesicMaxima
{
    static constexpr T border = T(0); // also below 0: a published trait
    static bool isFurther(T a, T b) { return a > b; }
    static T further(T a, T b) { return b > a ? b : a; }
    static T limited(T value, T limit) { return limit < value ? limit : value; }
};

/// Grows towards smaller values, over a limit.
template <class T> struct GeodesicMinima
{
    static constexpr T border = std::numeric_limits<T>::max();
    static bool isFurther(T a, T b) { return a < b; }
    static T further(T a, T b) { return b < a ? b : a; }
    static T limited(T value, T limit) { return limit > value ? limit : value; }
};

/// One sweep over a row: each voxel takes the furthest value of its visited neighbours, up to its limit.
template <class T, class Order> class GeodesicRow
{
public:
    void collect(T const* row, long count) { m_best.assign(row, row + count); }
    /// `neighbour[-1]` and `neighbour[count]` can be read where it is wide.
    void add(T const* __restrict neighbour, bool isWide)
    {
        T* __restrict const best = m_best.data();
        long const count = static_cast<long>(m_best.size());
        if (!isWide) {
            for (long x = 0; x < count; ++x)
                best[x] = Order::further(best[x], neighbour[x]);
            return;
        }
        for (long x = 0; x < count; ++x)
            best[x] = Order::further(best[x],
                                     Order::further(Order::further(neighbour[x - 1], neighbour[x]), neighbour[x + 1]));
    }
    /// Whether any voxel changed. `row[-1]` and `row[count]` can be read.
    bool sweep(T* __restrict row, T const* __restrict limits, bool isForward) const
    {
        long const count = static_cast<long>(m_best.size());
        long const step = isForward ? 1 : -1;
        long x = isForward ? 0 : count - 1;
        T previous = row[x - step];
        bool isChanged = false;
        for (long i = 0; i < count; ++i, x += step) {
            T const value = Order::limited(Order::further(m_best[static_cast<std::size_t>(x)], previous), limits[x]);
            bool const isFurther = Order::isFurther(value, row[x]);
            isChanged = isChanged || isFurther;
            previous = isFurther ? value : row[x];
            row[x] = previous;
        }
        return isChanged;
    }

private:
    std::vector<T> m_best;
};

/// Reconstruction of an image: `Rows` says where its values start, how far they may go, and what they become at last.
///
/// The result is the only one that a marker and a limit allow, so any order of visits leads to it. Each tile is swept
/// forward and backward in a private buffer until it is stable; then tiles beside its changes are due.
template <class T, class Order, class Rows> class GeodesicPropagation final : public BaseTbbAlgorithm
{
public:
    GeodesicPropagation(Rows const& rows, ImageModel* output, Connectivity const& connectivity)
        : BaseTbbAlgorithm(nullptr)
        , m_rows(rows)
        , m_output(View::New(output, access::FixedBorderCondition<T>::New(Order::border)))
        , m_connectivity(connectivity)
    {}

    void run()
    {
        GeodesicTiles tiles({m_output->numOfCols(), m_output->numOfRows(), m_output->numOfPlans()},
                            m_connectivity.isPlanar);
        // How often a tile comes back is not known before: it counts once.
        setTotalWork(3 * tiles.count() * m_output->numOfTimeSeries());
        for (unsigned long time = 0; time < m_output->numOfTimeSeries(); ++time) {
            m_time = static_cast<long>(time);
            if (!tiles.forEach(*this, [this](Tile const& tile) { start(tile); }) ||
                !tiles.untilStable(*this, [this](Tile const& tile) { return propagate(tile); }))
                return;
            addDoneWork(tiles.count());
            if (Rows::hasEnd && !tiles.forEach(*this, [this](Tile const& tile) { end(tile); }))
                return;
            addDoneWork(tiles.count());
        }
    }

    void writeTemporizedOutputs() override {}

private:
    using View = access::View<T>;

    access::RowPosition at(Tile const& tile, long x, long y, long z) const
    {
        return {tile.begin[0] + x, tile.begin[1] + y, tile.begin[2] + z, m_time, 0};
    }

    template <class Use> static void forEachRow(Tile const& tile, Use const& use)
    {
        for (long z = 0; z < tile.size[2]; ++z)
            for (long y = 0; y < tile.size[1]; ++y)
                use(y, z);
    }

    /// `fill(row, y, z)` sets a row of the tile, which is then written, or returns false.
    template <class Fill> void writeRows(Tile const& tile, Fill const& fill)
    {
        auto const cache = m_output->createRowCacheReadWrite(1);
        forEachRow(tile, [&](long y, long z) {
            auto& row = cache->getRow(0, static_cast<unsigned long>(tile.size[0]), at(tile, 0, y, z));
            if (fill(row.data(), y, z))
                row.writeRow(false, 0, 0, 0, 0, 0, 0);
        });
    }

    void start(Tile const& tile)
    {
        writeRows(tile, [&](T* row, long y, long z) {
            m_rows.start(row, tile.size[0], at(tile, 0, y, z));
            return true;
        });
        addDoneWork(1);
    }

    void end(Tile const& tile)
    {
        writeRows(tile, [&](T* row, long y, long z) {
            m_output->read(row, static_cast<unsigned long>(tile.size[0]), at(tile, 0, y, z));
            Rows::end(row, tile.size[0]);
            return true;
        });
    }

    /// A tile with one voxel more on each side, and the limits of its own voxels.
    struct Buffer
    {
        Buffer(Tile const& tile, bool isPlanar)
            : width(tile.size[0] + 2)
            , height(tile.size[1] + 2)
            , margin(isPlanar ? 0 : 1)
            , values(static_cast<std::size_t>(width * height * (tile.size[2] + 2 * margin)))
            , limits(static_cast<std::size_t>(tile.size[0] * tile.size[1] * tile.size[2]))
            , isChanged(static_cast<std::size_t>(tile.size[1] * tile.size[2]))
            , ends(isChanged.size())
        {}
        T* row(long y, long z) { return values.data() + ((z + margin) * height + y + 1) * width + 1; }

        long width, height, margin;
        std::vector<T> values;
        std::vector<T> limits;
        std::vector<char> isChanged;       // of each row
        std::vector<std::pair<T, T>> ends; // what the first and last voxel of each row were
    };

    ChangedSides propagate(Tile const& tile)
    {
        Buffer buffer(tile, m_connectivity.isPlanar);
        long const last = tile.size[0] - 1;
        for (long z = -buffer.margin; z < tile.size[2] + buffer.margin; ++z)
            for (long y = -1; y <= tile.size[1]; ++y)
                m_output->read(buffer.row(y, z) - 1, static_cast<unsigned long>(buffer.width), at(tile, -1, y, z));
        forEachRow(tile, [&](long y, long z) {
            long const number = z * tile.size[1] + y;
            T const* const row = buffer.row(y, z);
            m_rows.limit(row, buffer.limits.data() + number * tile.size[0], tile.size[0], at(tile, 0, y, z));
            buffer.ends[static_cast<std::size_t>(number)] = {row[0], row[last]};
        });

        GeodesicRow<T, Order> kernel;
        while (sweep(tile, buffer, kernel, true) | sweep(tile, buffer, kernel, false))
            if (isCancelled())
                break;

        ChangedSides changes;
        writeRows(tile, [&](T* copy, long y, long z) {
            std::size_t const number = static_cast<std::size_t>(z * tile.size[1] + y);
            if (!buffer.isChanged[number])
                return false;
            T const* const row = buffer.row(y, z);
            std::copy(row, row + tile.size[0], copy);
            changes.add(Order::isFurther(row[0], buffer.ends[number].first),
                        Order::isFurther(row[last], buffer.ends[number].second), y == 0, y == tile.size[1] - 1, z == 0,
                        z == tile.size[2] - 1);
            return true;
        });
        return changes;
    }

    bool sweep(Tile const& tile, Buffer& buffer, GeodesicRow<T, Order>& kernel, bool isForward)
    {
        bool isAnyChanged = false;
        long const before = isForward ? -1 : 1;
        for (long k = 0; k < tile.size[2]; ++k) {
            long const z = isForward ? k : tile.size[2] - 1 - k;
            for (long j = 0; j < tile.size[1]; ++j) {
                long const y = isForward ? j : tile.size[1] - 1 - j;
                T* const row = buffer.row(y, z);
                kernel.collect(row, tile.size[0]);
                auto const add = [&](long dy, long dz) {
                    int const steps = (dy != 0) + (dz != 0);
                    if (steps <= m_connectivity.axisSteps)
                        kernel.add(buffer.row(y + dy, z + dz), steps < m_connectivity.axisSteps);
                };
                add(before, 0);
                if (!m_connectivity.isPlanar)
                    for (long dy = -1; dy <= 1; ++dy)
                        add(dy, before);
                std::size_t const number = static_cast<std::size_t>(z * tile.size[1] + y);
                if (kernel.sweep(row, buffer.limits.data() + static_cast<long>(number) * tile.size[0], isForward)) {
                    buffer.isChanged[number] = 1;
                    isAnyChanged = true;
                }
            }
        }
        return isAnyChanged;
    }

    Rows m_rows;
    boost::shared_ptr<View> m_output;
    Connectivity m_connectivity;
    long m_time = 0;
};

} // namespace qel::morphology
