#pragma once

#include "Core/private/Access/IteratorHalfNeighborhood.h"

namespace qel::access {

template <class View, int N>
ScannedRows<View, N>::ScannedRows(boost::shared_ptr<View> view, OverlapBorder const& overlap)
    : m_view(view)
    , m_cache(view->createRowCacheReadWrite(2))
    , m_overlap(overlap)
{}

template <class View, int N> void ScannedRows<View, N>::init(Block2d const& block, IteratorDirection direction)
{
    setBlock(block, direction);
    m_safeBox = Row::safeBoxOf(block, m_overlap, *m_view);
    m_current = 0;
    fetch(0, m_row);
    fetch(1, direction == Forward ? m_row - 1 : m_row + 1);
}

template <class View, int N> void ScannedRows<View, N>::fetch(unsigned long slot, long row)
{
    m_cache->fetchRow(slot, rowLength() + 2, at(-1, row, 0));
}

template <class View, int N> void ScannedRows<View, N>::write(unsigned long slot)
{
    m_cache->getRow(slot).writeRow(m_safeBox, 1, rowLength());
}

template <class View, int N> bool ScannedRows<View, N>::toNextRow()
{
    // The row behind is finished. The very first one belongs to the block before.
    unsigned long const behind = 1 - m_current;
    if (m_row != (m_direction == Forward ? 0 : m_lastRow))
        write(behind);
    if (turn() == Turn::End) {
        write(m_current);
        return false;
    }
    m_current = behind;
    fetch(m_current, m_row);
    return true;
}

template <class View, int N>
ScannedPlans<View, N>::ScannedPlans(boost::shared_ptr<View> view, OverlapBorder const& overlap)
    : m_view(view)
    , m_cache(view->createPlanCacheReadWrite(2))
    , m_overlap(overlap)
{}

template <class View, int N> void ScannedPlans<View, N>::init(Block3d const& block, IteratorDirection direction)
{
    setBlock(block, direction);
    m_safeBox = Row::safeBoxOf(block, m_overlap, *m_view);
    m_current = 0;
    fetch(0, m_plan);
    fetch(1, direction == Forward ? m_plan - 1 : m_plan + 1);
}

template <class View, int N> void ScannedPlans<View, N>::fetch(unsigned long slot, long plan)
{
    m_cache->fetchPlanInBlock(slot, rowLength() + 2, m_block->getNbRows() + 2, *m_block, -1, -1, plan, 0, 0);
}

template <class View, int N> void ScannedPlans<View, N>::write(unsigned long slot)
{
    auto& plan = m_cache->getPlan(slot);
    for (unsigned long row = 0; row < m_block->getNbRows(); ++row)
        plan.getRow(row + 1).writeRow(m_safeBox, 1, rowLength());
}

template <class View, int N> bool ScannedPlans<View, N>::toNextRow()
{
    unsigned long const behind = 1 - m_current;
    bool const isFirstPlan = m_plan == (m_direction == Forward ? 0 : m_lastPlan);
    Turn const turned = turn();
    if (turned == Turn::ToRow)
        return true;
    if (!isFirstPlan)
        write(behind);
    if (turned == Turn::End) {
        write(m_current);
        return false;
    }
    m_current = behind;
    fetch(m_current, m_plan);
    return true;
}

} // namespace qel::access
