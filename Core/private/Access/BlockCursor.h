#pragma once

#include "Core/private/Access/RowPosition.h"

#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>

#include <optional>

namespace qel {

enum IteratorDirection
{
    Forward = 0,
    Backward = 1
};

namespace access {

/// What all cursors have in common: a copy of the block, and a position in it. No voxel type is in sight.
///
/// The position counts from the block's begins. `step` moves the column, or turns to the next row.
class BlockCursor
{
public:
    BlockCursor(BlockCursor const&) = delete;
    BlockCursor& operator=(BlockCursor const&) = delete;

    /// Whether every voxel of the block has been visited.
    bool atEnd() const { return m_direction == Forward ? m_plan > m_lastPlan : m_plan < 0; }
    long column() const { return m_column; }
    long row() const { return m_row; }
    long plan() const { return m_plan; }
    /// How many voxels a row of the block has.
    unsigned long rowLength() const { return m_rowLength; }
    Block const& block() const { return *m_block; }
    /// Absolute coordinates of the first voxel of the current row.
    RowPosition rowPosition() const { return at(0, m_row, m_plan); }

protected:
    BlockCursor() = default;
    ~BlockCursor() = default;

    /// `voxelsPerStep` is the packet size: the last column is that of the last whole or padded packet, and is negative
    /// in a block that is narrower than a packet.
    void setBlock(Block2d const& block, IteratorDirection direction = Forward, long voxelsPerStep = 1);
    void setBlock(Block3d const& block, IteratorDirection direction = Forward, long voxelsPerStep = 1);

    /// Absolute coordinates of a voxel that is given relative to the block.
    RowPosition at(long column, long row, long plan, long timeSeries = 0, long spectralSeries = 0) const
    {
        return {m_origin.column + column, m_origin.row + row, m_origin.plan + plan, m_origin.timeSeries + timeSeries,
                m_origin.spectralSeries + spectralSeries};
    }

    enum class Turn
    {
        ToRow,
        ToPlan,
        End
    };
    /// To the begin of the next row of the plan, of the next plan, or past the block.
    Turn turn();

    Block const* m_block = nullptr;
    RowPosition m_origin;          // of the block
    unsigned long m_rowLength = 0; // its columns
    bool m_initialized = false;
    IteratorDirection m_direction = Forward;
    long m_column = 0;
    long m_row = 0;
    long m_plan = 0;
    long m_lastColumn = -1;
    long m_lastRow = -1;
    long m_lastPlan = -1;

private:
    void start(IteratorDirection direction, long voxelsPerStep);

    std::optional<Block2d> m_block2d;
    std::optional<Block3d> m_block3d;
};

} // namespace access
} // namespace qel
