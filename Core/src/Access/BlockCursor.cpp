#include "Core/private/Access/BlockCursor.h"

namespace qel::access {

void BlockCursor::setBlock(Block2d const& block, IteratorDirection direction, long voxelsPerStep)
{
    m_block = &m_block2d.emplace(block);
    start(direction, voxelsPerStep);
}

void BlockCursor::setBlock(Block3d const& block, IteratorDirection direction, long voxelsPerStep)
{
    m_block = &m_block3d.emplace(block);
    start(direction, voxelsPerStep);
}

void BlockCursor::start(IteratorDirection direction, long voxelsPerStep)
{
    m_direction = direction;
    m_origin = {static_cast<long>(m_block->colsBegin()), static_cast<long>(m_block->rowsBegin()),
                static_cast<long>(m_block->plansBegin()), static_cast<long>(m_block->timeSeriesBegin()),
                static_cast<long>(m_block->spectralSeriesBegin())};
    m_rowLength = m_block->getNbCols();
    m_lastColumn = static_cast<long>(m_rowLength) - voxelsPerStep;
    m_lastRow = static_cast<long>(m_block->getNbRows()) - 1;
    m_lastPlan = static_cast<long>(m_block->getNbPlans()) - 1;
    bool const forward = direction == Forward;
    m_column = forward ? 0 : m_lastColumn;
    m_row = forward ? 0 : m_lastRow;
    m_plan = forward ? 0 : m_lastPlan;
    m_initialized = true;
}

BlockCursor::Turn BlockCursor::turn()
{
    if (m_direction == Forward) {
        if (m_row < m_lastRow) {
            m_column = 0;
            ++m_row;
            return Turn::ToRow;
        }
        if (m_plan < m_lastPlan) {
            m_column = 0;
            m_row = 0;
            ++m_plan;
            return Turn::ToPlan;
        }
        ++m_plan;
        return Turn::End;
    }
    if (m_row > 0) {
        m_column = m_lastColumn;
        --m_row;
        return Turn::ToRow;
    }
    if (m_plan > 0) {
        m_column = m_lastColumn;
        m_row = m_lastRow;
        --m_plan;
        return Turn::ToPlan;
    }
    --m_plan;
    return Turn::End;
}

} // namespace qel::access
