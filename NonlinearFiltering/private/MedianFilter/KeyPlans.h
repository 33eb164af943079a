#pragma once

#include "NonlinearFiltering/private/MedianFilter/MedianKey.h"

#include <qel/access/Block.h>

#include <algorithm>
#include <vector>

namespace qel::nonlinear_filtering {

/// The plans of a block that a window needs at once, with what lies around them, as keys.
template <class View, class Keys> class KeyPlans
{
public:
    using T = typename View::VoxelType;
    using Key = typename Keys::Key;

    /// `room` keys follow the last one that is read of each row.
    KeyPlans(View const& view, Keys const& keys, access::Block const& block, long reach, long planReach,
             unsigned long room)
        : m_view(view)
        , m_conversion(keys)
        , m_block(block)
        , m_reach(reach)
        , m_numOfRows(block.getNbRows() + 2 * static_cast<unsigned long>(reach))
        , m_numOfPlans(2 * static_cast<unsigned long>(planReach) + 1)
        , m_count(block.getNbCols() + 2 * static_cast<unsigned long>(reach))
        , m_stride(m_count + room)
        , m_keys(m_numOfPlans * m_numOfRows * m_stride)
    {}

    /// `plan` counts from the begin of the block; it takes the place of the one that is farthest behind it.
    void fetch(long plan)
    {
        for (long row = -m_reach; row < static_cast<long>(m_numOfRows) - m_reach; ++row) {
            Key* const keys = at(row, plan) - m_reach;
            if constexpr (Keys::areVoxels) {
                read(keys, row, plan);
            } else {
                m_voxels.resize(m_count);
                read(m_voxels.data(), row, plan);
                Keys const conversion = m_conversion;
                std::transform(m_voxels.begin(), m_voxels.end(), keys,
                               [=](T voxel) { return conversion.keyOf(voxel); });
            }
        }
    }

    /// The first voxel of a row of the block, or of a row around it.
    Key* at(long row, long plan)
    {
        long const plans = static_cast<long>(m_numOfPlans);
        long const slot = (plan + plans) % plans;
        return m_keys.data() +
               static_cast<unsigned long>(slot * static_cast<long>(m_numOfRows) + row + m_reach) * m_stride + m_reach;
    }

private:
    void read(T* voxels, long row, long plan) const
    {
        m_view.read(voxels, m_count, static_cast<long>(m_block.colsBegin()) - m_reach,
                    static_cast<long>(m_block.rowsBegin()) + row, static_cast<long>(m_block.plansBegin()) + plan,
                    static_cast<long>(m_block.timeSeriesBegin()), static_cast<long>(m_block.spectralSeriesBegin()));
    }

    View const& m_view;
    Keys m_conversion;
    access::Block const& m_block;
    long m_reach;
    unsigned long m_numOfRows;
    unsigned long m_numOfPlans;
    unsigned long m_count;
    unsigned long m_stride;
    std::vector<Key> m_keys;
    std::vector<T> m_voxels;
};

} // namespace qel::nonlinear_filtering
