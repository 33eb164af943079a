#pragma once

#include "Core/private/Access/IteratorNeighborhood.h"

#include <algorithm>
#include <numeric>

namespace qel::access {

inline std::vector<unsigned long> slotNumbers(long lowest, long highest)
{
    std::vector<unsigned long> slots(static_cast<unsigned long>(std::max(highest - lowest + 1, 0l)));
    std::iota(slots.begin(), slots.end(), 0ul);
    return slots;
}

template <class View, int N>
RotatingRows<View, N>::RotatingRows(boost::shared_ptr<View const> view, Step lowest, Step highest)
    : m_view(view)
    , m_lowest(lowest)
    , m_highest(highest)
    , m_slots(slotNumbers(lowest.y, highest.y))
    , m_rows(m_slots.size())
{
    m_cache = view->createRowCacheRead(m_slots.size());
}

template <class View, int N> void RotatingRows<View, N>::init(Block2d const& block)
{
    setBlock(block, Forward, N);
    for (unsigned long index = 0; index < m_slots.size(); ++index)
        fetch(index, m_lowest.y + static_cast<long>(index));
}

template <class View, int N> void RotatingRows<View, N>::fetch(unsigned long index, long row)
{
    unsigned long const voxels = rowLength() + static_cast<unsigned long>(m_highest.x - m_lowest.x);
    m_rows[index] = m_cache->fetchRow(m_slots[index], voxels, at(m_lowest.x, row, 0)).data();
}

template <class View, int N> bool RotatingRows<View, N>::toNextRow()
{
    if (turn() == Turn::End)
        return false;
    std::rotate(m_slots.begin(), m_slots.begin() + 1, m_slots.end());
    std::rotate(m_rows.begin(), m_rows.begin() + 1, m_rows.end());
    fetch(m_slots.size() - 1, m_row + m_highest.y);
    return true;
}

template <class View, int N>
RotatingPlans<View, N>::RotatingPlans(boost::shared_ptr<View const> view, Step lowest, Step highest)
    : m_view(view)
    , m_lowest(lowest)
    , m_highest(highest)
    , m_slots(slotNumbers(lowest.z, highest.z))
{
    m_cache = view->createPlanCacheRead(m_slots.size());
}

template <class View, int N> void RotatingPlans<View, N>::init(Block3d const& block)
{
    setBlock(block, Forward, N);
    for (unsigned long index = 0; index < m_slots.size(); ++index)
        fetch(index, m_lowest.z + static_cast<long>(index));
}

template <class View, int N> void RotatingPlans<View, N>::fetch(unsigned long index, long plan)
{
    unsigned long const cols = rowLength() + static_cast<unsigned long>(m_highest.x - m_lowest.x);
    unsigned long const rows = m_block->getNbRows() + static_cast<unsigned long>(m_highest.y - m_lowest.y);
    m_cache->fetchPlanInBlock(m_slots[index], cols, rows, *m_block, m_lowest.x, m_lowest.y, plan, 0, 0);
}

template <class View, int N> bool RotatingPlans<View, N>::toNextRow()
{
    switch (turn()) {
    case Turn::ToRow:
        return true;
    case Turn::ToPlan:
        std::rotate(m_slots.begin(), m_slots.begin() + 1, m_slots.end());
        fetch(m_slots.size() - 1, m_plan + m_highest.z);
        return true;
    case Turn::End:
        break;
    }
    return false;
}

struct Reach
{
    Step lowest{0, 0, 0};
    Step highest{0, 0, 0};
};

inline Reach reachOf(std::vector<kernel::Offset2D> const& offsets)
{
    Reach reach;
    if (!offsets.empty())
        kernel::computeExtrema(offsets, reach.lowest.x, reach.highest.x, reach.lowest.y, reach.highest.y);
    return reach;
}

inline Reach reachOf(std::vector<kernel::Offset3D> const& offsets)
{
    Reach reach;
    if (!offsets.empty())
        kernel::computeExtrema(offsets, reach.lowest.x, reach.highest.x, reach.lowest.y, reach.highest.y,
                               reach.lowest.z, reach.highest.z);
    return reach;
}

template <class Rows, class Offset, int N>
IteratorGeneralNeighborhood<Rows, Offset, N>::IteratorGeneralNeighborhood(
    boost::shared_ptr<typename Rows::ViewType const> view, std::vector<Offset> const& offsets)
    : Base(view, reachOf(offsets).lowest, reachOf(offsets).highest)
    , m_offsets(offsets)
{
    m_pointers.resize(offsets.size());
}

template <class Rows, class Offset, int N>
AlgoBorderInfluence IteratorGeneralNeighborhood<Rows, Offset, N>::getAlgoBorderInfluence() const
{
    auto const [lowest, highest] = reachOf(m_offsets);
    auto const below = [](long step) { return static_cast<unsigned long>(step < 1 ? -step : 0); };
    auto const above = [](long step) { return static_cast<unsigned long>(step < 0 ? 0 : step); };
    return AlgoBorderInfluence(below(lowest.x), above(highest.x), below(lowest.y), above(highest.y), below(lowest.z),
                               above(highest.z), 0, 0, 0, 0);
}

inline long planOf(kernel::Offset2D const&) { return 0; }
inline long planOf(kernel::Offset3D const& offset) { return offset.z; }

template <class Rows, class Offset, int N> void IteratorGeneralNeighborhood<Rows, Offset, N>::point()
{
    for (unsigned long index = 0; index < m_offsets.size(); ++index)
        m_pointers[index] = this->rowAt(m_offsets[index].y, planOf(m_offsets[index])) + m_offsets[index].x;
}

template <class View>
IteratorNeighborhood2D_Square4ByBlock<View>::IteratorNeighborhood2D_Square4ByBlock(boost::shared_ptr<View const> view)
    : m_view(view)
    , m_cache(view->createRowCacheRead(2))
{}

template <class View> void IteratorNeighborhood2D_Square4ByBlock<View>::init(Block2d const& block, unsigned long voxels)
{
    setBlock(block, Forward, 2);
    m_voxels = voxels;
    fetchRows(0);
}

template <class View> void IteratorNeighborhood2D_Square4ByBlock<View>::fetchRows(long row)
{
    m_row = row;
    m_column = 0;
    m_upper = m_cache->fetchRow(0, m_voxels, at(0, row, 0)).data();
    m_lower = m_cache->fetchRow(1, m_voxels, at(0, row + 1, 0)).data();
}

} // namespace qel::access
