#pragma once

#include "Segmentation/private/LabelTable.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace qel::segmentation {

/// Voxels [begin, end) of a row that have one label, which is not 0.
template <class L, class Column> struct LabelRun
{
    Column begin;
    Column end;
    L label;
};

/// The labels of a block, row by row, as runs in the order of columns. `Column` holds more than the width of the block.
///
/// Labels are those of a walk over all voxels, each of which asks the table with its four neighbours. But within a run
/// of foreground the answer changes, and the table too, only where the neighbour above right is the first of a run
/// above: all other neighbours are then either that label already, or linked to it. So only there the table is asked.
template <class L, class Column> class LabelRows
{
public:
    using Run = LabelRun<L, Column>;

    /// For rows of `width` voxels.
    explicit LabelRows(unsigned long width)
        : m_width(width)
        , m_edges(std::make_unique_for_overwrite<Column[]>(width + 2 + edgesAtOnce))
    {
        grow();
        m_runs[m_size++] = behindAll; // nothing is above the first row
        m_rowBegins.push_back(m_size);
    }

    /// Labels the next row. `foreground`: its bits, with one more 0 at least behind the last.
    void add(std::uint64_t const* foreground);

    std::size_t numOfRows() const { return m_rowBegins.size() - 1; }
    Run const* begin(std::size_t row) const { return m_runs.get() + m_rowBegins[row]; }
    Run const* end(std::size_t row) const { return m_runs.get() + m_rowBegins[row + 1] - 1; }
    LabelTable<L>& getTable() { return m_table; }

private:
    static constexpr int edgesAtOnce = 8;
    /// Ends each row.
    static constexpr Run behindAll{std::numeric_limits<Column>::max(), std::numeric_limits<Column>::max(), 0};

    /// In registers: older processors have no instruction for it, and std::popcount calls a function there.
    static int numOfBits(std::uint64_t bits)
    {
        bits -= bits >> 1 & 0x5555555555555555u;
        bits = (bits & 0x3333333333333333u) + (bits >> 2 & 0x3333333333333333u);
        bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0Fu;
        return static_cast<int>(bits * 0x0101010101010101u >> 56);
    }
    std::size_t findEdges(std::uint64_t const* foreground);
    Run* addRun(Run const*& above, Run const* firstAbove, Column x, Column end, Run* out);
    L labelOfFirst(Run const*& above, Column x);
    static L labelAt(Run const*& above, Column x);
    static L labelBefore(Run const* run, Run const* firstAbove, Column x);
    /// Makes room for a row, in which no two runs share a voxel, and for its end.
    void grow();

    unsigned long m_width;
    LabelTable<L> m_table;
    std::unique_ptr<Run[]> m_runs;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
    std::vector<std::size_t> m_rowBegins; // one more than there are rows
    std::unique_ptr<Column[]> m_edges;
};

template <class L, class Column> void LabelRows<L, Column>::add(std::uint64_t const* foreground)
{
    grow();
    std::size_t const rows = numOfRows();
    Run const* const firstAbove = m_runs.get() + (rows > 0 ? m_rowBegins[rows - 1] : 0);
    Run const* above = firstAbove;
    Run* out = m_runs.get() + m_size;
    std::size_t const edges = findEdges(foreground);
    for (std::size_t i = 0; i < edges; i += 2)
        out = addRun(above, firstAbove, m_edges[i], m_edges[i + 1], out);
    *out++ = behindAll;
    m_size = static_cast<std::size_t>(out - m_runs.get());
    m_rowBegins.push_back(m_size);
}

/// The columns at which runs of foreground begin and end, in turn.
template <class L, class Column> std::size_t LabelRows<L, Column>::findEdges(std::uint64_t const* foreground)
{
    Column* out = m_edges.get();
    std::uint64_t carry = 0;
    for (unsigned long word = 0; word <= m_width / 64; ++word) {
        std::uint64_t const bits = foreground[word];
        // Set where a voxel differs from its left neighbour.
        std::uint64_t edges = bits ^ (bits << 1 | carry);
        carry = bits >> 63;
        int const count = numOfBits(edges);
        // Some at once, needed or not: a loop that ends after as many as there are would be mispredicted each time.
        for (int done = 0; done < count; done += edgesAtOnce)
            for (int i = 0; i < edgesAtOnce; ++i) {
                out[done + i] = static_cast<Column>(64 * word + static_cast<unsigned>(std::countr_zero(edges)));
                edges &= edges - 1;
            }
        out += count;
    }
    return static_cast<std::size_t>(out - m_edges.get());
}

/// Labels the foreground [x, end), which is bounded by background. `above` comes to the first run above that may matter
/// to the next one.
template <class L, class Column>
LabelRun<L, Column>* LabelRows<L, Column>::addRun(Run const*& above, Run const* firstAbove, Column x, Column end,
                                                  Run* out)
{
    for (; x < end; ++x) {
        while (above->end < x)
            ++above;
        Run const* next = above;
        L label = labelOfFirst(next, x);
        if (label == 0)
            continue; // Wrapped just there: like background to all that follow.
        Column begin = x;
        for (; next->begin <= end; ++next) {
            Column const at = next->begin - 1;
            L const merged = m_table.labelFor(label, labelBefore(next, firstAbove, at - 1),
                                              labelBefore(next, firstAbove, at), next->label);
            above = next;
            if (merged == label)
                continue;
            if (begin < at)
                *out++ = {begin, at, label};
            begin = at;
            label = merged;
        }
        *out++ = {begin, end, label};
        break;
    }
    return out;
}

/// `above`: the first run above that ends behind x - 2. It comes to the first that begins behind x + 1.
template <class L, class Column> L LabelRows<L, Column>::labelOfFirst(Run const*& above, Column x)
{
    if (above->begin > x + 1)
        return m_table.create();
    if (above[1].begin > x + 1)
        return m_table.labelFor(above++->label);
    L const nw = x > 0 ? labelAt(above, x - 1) : L(0);
    L const n = labelAt(above, x);
    // The last column has no neighbour above right.
    L const ne = x + 1 < m_width ? labelAt(above, x + 1) : n;
    if (above->begin <= x + 1)
        ++above;
    return m_table.labelFor(0, nw, n, ne);
}

/// The label at column x. `above`: the first run that ends behind x - 1; it comes to the first that ends behind x.
template <class L, class Column> L LabelRows<L, Column>::labelAt(Run const*& above, Column x)
{
    if (above->end <= x)
        ++above;
    return above->begin <= x ? above->label : L(0);
}

/// The label at column x, which is one or two columns before a run.
template <class L, class Column> L LabelRows<L, Column>::labelBefore(Run const* run, Run const* firstAbove, Column x)
{
    for (int i = 0; i < 2 && run != firstAbove; ++i) {
        --run;
        if (run->end <= x)
            return 0;
        if (run->begin <= x)
            return run->label;
    }
    return 0;
}

template <class L, class Column> void LabelRows<L, Column>::grow()
{
    std::size_t const needed = m_size + m_width + 1;
    if (needed <= m_capacity)
        return;
    std::size_t const capacity = std::max(needed, 2 * m_capacity);
    auto larger = std::make_unique_for_overwrite<Run[]>(capacity);
    std::copy_n(m_runs.get(), m_size, larger.get());
    m_runs = std::move(larger);
    m_capacity = capacity;
}

} // namespace qel::segmentation
