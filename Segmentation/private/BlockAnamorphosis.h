#pragma once

#include "Core/private/Access/Rows.h"
#include "Segmentation/private/BlockLabeling.h"

namespace qel::segmentation {

/// Writes the labelled blocks with their final numbers.
template <class L, class Column> class BlockAnamorphosis final : public access::BlockTask<access::Block2d>
{
public:
    using View = access::View<L>;

    BlockAnamorphosis(View& output, LabelBlocks<L, Column> const& blocks, BaseTbbAlgorithm& owner)
        : m_output(output)
        , m_blocks(blocks)
        , m_owner(owner)
    {}

    void runBlock(access::Block2d const& block) override;

private:
    /// The number of each label of a block, at the label. That of 0 is 0.
    std::vector<L> numbersOf(details::BlockStartPoint const& start, LabelBlock<L, Column> const& block) const;
    /// Sets [begin, end), and whatever lies in the `overrun` voxels behind.
    static void fill(L* __restrict row, unsigned long begin, unsigned long end, L value)
    {
        for (unsigned long x = begin; x < end; x += overrun)
            for (unsigned long i = 0; i < overrun; ++i)
                row[x + i] = value;
    }

    static constexpr unsigned long overrun = 128 / sizeof(L); // a few vectors: most runs are as short
    View& m_output;
    LabelBlocks<L, Column> const& m_blocks;
    BaseTbbAlgorithm& m_owner;
};

template <class L, class Column>
std::vector<L> BlockAnamorphosis<L, Column>::numbersOf(details::BlockStartPoint const& start,
                                                       LabelBlock<L, Column> const& block) const
{
    auto const placeOf = [](details::LabelData<L> const& label) { return LabelTable<L>::placeOf(label.label); };
    details::BlockStartPoint const nowhere;
    std::vector<L> numbers(block.table.size() + 1);
    for (std::size_t i = 0; i < block.table.size(); ++i) {
        details::LabelData<L> entry = block.table[i];
        // Most links lead down in the block, to where the number is known.
        while (entry.block == start && placeOf(entry) >= i)
            entry = block.table[placeOf(entry)];
        if (entry.block == start) {
            numbers[i + 1] = numbers[placeOf(entry) + 1];
            continue;
        }
        while (entry.block != nowhere)
            entry = m_blocks.at(entry.block).table[placeOf(entry)];
        numbers[i + 1] = entry.label;
    }
    return numbers;
}

template <class L, class Column> void BlockAnamorphosis<L, Column>::runBlock(access::Block2d const& block)
{
    details::BlockStartPoint const start{static_cast<long>(block.colsBegin()), static_cast<long>(block.rowsBegin())};
    LabelBlock<L, Column> const& labels = m_blocks.at(start);
    std::vector<L> const numbers = numbersOf(start, labels);

    // Not the constant: that would turn short fills into calls of memset.
    L const background = numbers[0];
    unsigned long const width = block.getNbCols();
    auto const cache = m_output.createRowCacheReadWrite(1);
    for (unsigned long row = 0; row < block.getNbRows(); ++row) {
        auto& target = cache->getRowInBlock(0, width + overrun, block, 0, static_cast<long>(row), 0, 0, 0);
        L* const voxels = target.data();
        unsigned long x = 0;
        auto const* const end = labels.rows.end(row);
        for (auto const* run = labels.rows.begin(row); run != end; ++run) {
            if (x < run->begin)
                fill(voxels, x, run->begin, background);
            x = run->end;
            fill(voxels, run->begin, x, numbers[LabelTable<L>::placeOf(run->label) + 1]);
        }
        fill(voxels, x, width, background);
        if (m_owner.getContext().is_group_execution_cancelled())
            return;
        target.resize(width);
        target.writeRow(false, 0, 0, 0, 0, 0, 0);
        m_owner.addDoneWork(width);
    }
}

} // namespace qel::segmentation
