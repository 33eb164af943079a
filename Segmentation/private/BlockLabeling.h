#pragma once

#include "Core/private/Access/RowPosition.h"
#include "Core/private/BaseTbbAlgorithm.h"
#include "Segmentation/private/Foreground.h"
#include "Segmentation/private/LabelData.h"
#include "Segmentation/private/LabelRows.h"
#include "Segmentation/private/StripeLoops.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace qel::segmentation {

/// What is known of a labelled block: its rows as runs of its own labels, and its table.
template <class L, class Column> struct LabelBlock
{
    LabelRows<L, Column> rows;
    std::vector<details::LabelData<L>> table;
};

template <class L, class Column> using LabelBlocks = std::map<details::BlockStartPoint, LabelBlock<L, Column>>;

/// Labels blocks of a plane, each by itself, and links the labels of neighbouring ones. The blocks of all bodies tile a
/// rectangle in any way in which joined parts have a whole side in common.
template <class L, class Column> class BlockLabeling final : public access::ReductionTask<access::Block2d>
{
public:
    using Label = details::LabelData<L>;
    using Border = std::vector<Label>;

    BlockLabeling(Foreground const& foreground, BaseTbbAlgorithm& owner)
        : m_foreground(foreground)
        , m_owner(owner)
    {}

    void runBlock(access::Block2d const& block) override;
    std::unique_ptr<access::ReductionTask<access::Block2d>> split() override
    {
        return std::make_unique<BlockLabeling>(m_foreground, m_owner);
    }
    /// Takes over the blocks of `right`, which touches this rectangle with one of its sides.
    void join(access::ReductionTask<access::Block2d>& right) override;

    LabelBlocks<L, Column>& getBlocks() { return blocks; }

private:
    void setBorders(details::BlockStartPoint const& start, LabelRows<L, Column> const& rows);
    /// Links the labels along two borders that face each other. The roots of `kept` stay roots.
    void borderFusion(Border const& linked, Border const& kept);
    /// The block and the label at the end of the links of a label.
    Label root(Label label) const;
    Label& entryOf(Label const& label) { return blocks.at(label.block).table[LabelTable<L>::placeOf(label.label)]; }

    Foreground const& m_foreground;
    BaseTbbAlgorithm& m_owner;
    LabelBlocks<L, Column> blocks;
    Border topRow, bottomRow, leftColumn, rightColumn;
    unsigned long colsBegin = 0, colsEnd = 0, rowsBegin = 0, rowsEnd = 0;
    bool m_isDone = false; // false in a body that was cancelled
};

/// Calls `use(column, label)` for every voxel of a row of `width` voxels, background included.
template <class L, class Column, class Use>
void forEachLabel(LabelRun<L, Column> const* run, LabelRun<L, Column> const* end, unsigned long width, Use const& use)
{
    unsigned long x = 0;
    for (; run != end; ++run) {
        for (; x < run->begin; ++x)
            use(x, L(0));
        for (; x < run->end; ++x)
            use(x, run->label);
    }
    for (; x < width; ++x)
        use(x, L(0));
}

template <class L, class Column> void BlockLabeling<L, Column>::runBlock(access::Block2d const& block)
{
    colsBegin = block.colsBegin();
    colsEnd = block.colsEnd();
    rowsBegin = block.rowsBegin();
    rowsEnd = block.rowsEnd();
    details::BlockStartPoint const start{static_cast<long>(colsBegin), static_cast<long>(rowsBegin)};

    unsigned long const width = block.getNbCols();
    LabelRows<L, Column> rows(width);
    std::unique_ptr<ForegroundReader> const reader = m_foreground.createReader();
    for (unsigned long row = rowsBegin; row < rowsEnd; ++row) {
        access::RowPosition const at{static_cast<long>(colsBegin), static_cast<long>(row),
                                     static_cast<long>(block.plansBegin()), static_cast<long>(block.timeSeriesBegin()),
                                     static_cast<long>(block.spectralSeriesBegin())};
        rows.add(reader->read(at, width));
        m_owner.addDoneWork(width);
        if (m_owner.getContext().is_group_execution_cancelled())
            return;
    }

    setBorders(start, rows);
    LabelTable<L>& table = rows.getTable();
    table.cutCircles();
    std::vector<Label> entries;
    entries.reserve(table.getParents().size());
    for (L const parent : table.getParents())
        entries.push_back(parent == 0 ? Label{} : Label{start, parent});
    blocks.emplace(start, LabelBlock<L, Column>{std::move(rows), std::move(entries)});
    m_isDone = true;
}

template <class L, class Column>
void BlockLabeling<L, Column>::setBorders(details::BlockStartPoint const& start, LabelRows<L, Column> const& rows)
{
    unsigned long const width = colsEnd - colsBegin;
    std::size_t const height = rows.numOfRows();
    auto const entry = [&](L label) { return label == 0 ? Label{} : Label{start, label}; };
    auto const wholeRow = [&](std::size_t row) {
        Border border;
        border.reserve(width + 1);
        forEachLabel(rows.begin(row), rows.end(row), width,
                     [&](unsigned long, L label) { border.push_back(entry(label)); });
        return border;
    };
    topRow = wholeRow(0);
    bottomRow = height == 1 ? topRow : wholeRow(height - 1);
    leftColumn.reserve(height + 1);
    rightColumn.reserve(height + 1);
    for (std::size_t row = 0; row < height; ++row) {
        auto const* const first = rows.begin(row);
        auto const* const end = rows.end(row);
        leftColumn.push_back(entry(first != end && first->begin == 0 ? first->label : L(0)));
        rightColumn.push_back(entry(first != end && end[-1].end == width ? end[-1].label : L(0)));
    }
}

template <class L, class Column> void BlockLabeling<L, Column>::join(access::ReductionTask<access::Block2d>& right)
{
    auto& other = static_cast<BlockLabeling&>(right);
    if (!m_isDone || !other.m_isDone)
        return;
    blocks.merge(other.blocks);

    auto const append = [](Border& border, Border const& more) {
        border.insert(border.end(), more.begin(), more.end());
    };
    auto const prepend = [](Border& border, Border const& more) {
        border.insert(border.begin(), more.begin(), more.end());
    };
    if (colsEnd == other.colsBegin) {
        borderFusion(other.leftColumn, rightColumn);
        rightColumn = std::move(other.rightColumn);
        colsEnd = other.colsEnd;
        append(topRow, other.topRow);
        append(bottomRow, other.bottomRow);
    } else if (colsBegin == other.colsEnd) {
        borderFusion(other.rightColumn, leftColumn);
        leftColumn = std::move(other.leftColumn);
        colsBegin = other.colsBegin;
        prepend(topRow, other.topRow);
        prepend(bottomRow, other.bottomRow);
    } else if (rowsBegin == other.rowsEnd) {
        borderFusion(other.bottomRow, topRow);
        topRow = std::move(other.topRow);
        rowsBegin = other.rowsBegin;
        prepend(leftColumn, other.leftColumn);
        prepend(rightColumn, other.rightColumn);
    } else if (rowsEnd == other.rowsBegin) {
        borderFusion(other.topRow, bottomRow);
        bottomRow = std::move(other.bottomRow);
        rowsEnd = other.rowsEnd;
        append(leftColumn, other.leftColumn);
        append(rightColumn, other.rightColumn);
    }
}

template <class L, class Column> void BlockLabeling<L, Column>::borderFusion(Border const& linked, Border const& kept)
{
    std::size_t const size = linked.size();
    Label last[4];
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i].label == 0)
            continue;
        // At the end the window stays on the last two entries.
        std::size_t const middle = i + 1 < size || size < 2 ? i : size - 2;
        Label const prev = i > 0 ? linked[i - 1] : Label{};
        Label const& cur = linked[middle];
        Label const& next = middle + 1 < size ? linked[middle + 1] : cur;
        // Along two runs that face each other, everything is linked already.
        if (last[0] == kept[i] && last[1] == prev && last[2] == cur && last[3] == next)
            continue;
        last[0] = kept[i];
        last[1] = prev;
        last[2] = cur;
        last[3] = next;
        if (prev.label == 0 && cur.label == 0 && next.label == 0)
            continue;

        Label const keptRoot = root(kept[i]);
        auto const unite = [&](Label const& label) {
            if (Label const other = root(label); other != keptRoot)
                entryOf(other) = keptRoot;
        };
        if (prev.label != 0)
            unite(prev);
        if (cur.label != 0 && cur != prev)
            unite(cur);
        if (next.label != 0 && next != prev && next != cur)
            unite(next);
    }
}

template <class L, class Column>
typename BlockLabeling<L, Column>::Label BlockLabeling<L, Column>::root(Label label) const
{
    for (;;) {
        Label const& entry = blocks.at(label.block).table[LabelTable<L>::placeOf(label.label)];
        if (entry.label == 0)
            return label;
        label = entry;
    }
}

} // namespace qel::segmentation
