#pragma once

#include "Core/private/Access/NeighborhoodShapes.h"
#include "Core/private/Access/RowPosition.h"

#include <qel/access/Block.h>

#include <limits>
#include <memory>
#include <vector>

namespace qel::linear_filtering {

using access::Step;

/// Memory that goes from one block to the next. Not cleared.
template <class T> class RowMemory
{
public:
    T* atLeast(unsigned long count)
    {
        if (m_count < count) {
            m_voxels.reset(new T[count]);
            m_count = count;
        }
        return m_voxels.get();
    }

private:
    std::unique_ptr<T[]> m_voxels;
    unsigned long m_count = 0;
};

/// The rows of an image that a block reads, within reach of `lowest` to `highest` from the block's own rows; each is
/// read once, when it is first asked for.
///
/// With a reach along plans there is a slot for each row of as many plans as are in reach; without one, for as many
/// rows as are in reach. A new plan or row takes the place of the one that fell out of reach. Slots that nobody asks
/// for take no memory: a kernel of two points far apart has no more rows than it needs.
template <class View> class RowsOfBlock
{
public:
    using VoxelType = typename View::VoxelType;

    /// `lowest` is at most 0 on each axis, and `highest` at least 0.
    RowsOfBlock(View const& view, access::Block const& block, Step const& lowest, Step const& highest,
                RowMemory<VoxelType>& memory)
        : m_view(view)
        , m_origin{static_cast<long>(block.colsBegin()) + lowest.x, static_cast<long>(block.rowsBegin()),
                   static_cast<long>(block.plansBegin()), static_cast<long>(block.timeSeriesBegin()),
                   static_cast<long>(block.spectralSeriesBegin())}
        , m_lowest(lowest)
        , m_highest(highest)
        , m_numOfRows(static_cast<long>(block.getNbRows()))
        , m_plans(highest.z - lowest.z + 1)
        , m_rows(m_plans > 1 ? m_numOfRows + highest.y - lowest.y : highest.y - lowest.y + 1)
        , m_length(block.getNbCols() + static_cast<unsigned long>(highest.x - lowest.x))
        // Rows that stand a multiple of the page size apart would share their places in the cache.
        , m_stride(m_length + 128 / sizeof(VoxelType))
        , m_held(static_cast<unsigned long>(m_plans * m_rows))
        , m_voxels(memory.atLeast(m_held.size() * m_stride))
    {
        // Divisions would take as long as the sums of a short row.
        for (long y = 0; y < m_numOfRows + highest.y - lowest.y; ++y)
            m_slotsOfRows.push_back(static_cast<unsigned long>(y % m_rows));
        for (long z = 0; z < static_cast<long>(block.getNbPlans()) + highest.z - lowest.z; ++z)
            m_slotsOfPlans.push_back(static_cast<unsigned long>(z % m_plans * m_rows));
    }

    /// The row `y` rows and `z` plans from the first one of the block. Voxel 0 is the first column of the block.
    VoxelType const* row(long y, long z)
    {
        unsigned long const slot = m_slotsOfPlans[static_cast<unsigned long>(z - m_lowest.z)] +
                                   m_slotsOfRows[static_cast<unsigned long>(y - m_lowest.y)];
        VoxelType* const voxels = m_voxels + slot * m_stride;
        if (m_held[slot].y != y || m_held[slot].z != z) {
            m_view.read(voxels, m_length, m_origin.column, m_origin.row + y, m_origin.plan + z, m_origin.timeSeries,
                        m_origin.spectralSeries);
            m_held[slot] = {y, z};
        }
        return voxels - m_lowest.x;
    }

    /// Reads what is in reach of a row, and of those before it, but for what was read already: in place, before the row
    /// is written. To be called for each row.
    void readAhead(long y, long z)
    {
        long const firstPlan = z > 0 ? z + m_highest.z : m_lowest.z;
        long const firstRow = y > 0 ? y + m_highest.y : m_lowest.y;
        if (m_plans == 1)
            read(firstRow, y + m_highest.y, z, z);
        else if (y == 0)
            read(m_lowest.y, m_numOfRows - 1 + m_highest.y, firstPlan, z + m_highest.z);
    }

private:
    struct Place
    {
        long y = std::numeric_limits<long>::min();
        long z = 0;
    };

    void read(long firstRow, long lastRow, long firstPlan, long lastPlan)
    {
        for (long z = firstPlan; z <= lastPlan; ++z)
            for (long y = firstRow; y <= lastRow; ++y)
                row(y, z);
    }

    View const& m_view;
    access::RowPosition m_origin;
    Step m_lowest;
    Step m_highest;
    long m_numOfRows;
    long m_plans;
    long m_rows;
    unsigned long m_length;
    unsigned long m_stride;
    std::vector<unsigned long> m_slotsOfRows; // from the lowest row on
    std::vector<unsigned long> m_slotsOfPlans;
    std::vector<Place> m_held; // which row stands in each slot
    VoxelType* m_voxels;
};

} // namespace qel::linear_filtering
