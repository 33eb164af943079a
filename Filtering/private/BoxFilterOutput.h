#pragma once

#include "Core/private/Access/Rows.h"
#include "Filtering/private/RowSums.h"

namespace qel::filtering::smoothing {

/// What the last two stages of a box filter have in common in two and three dimensions: from rows of one plan to
/// finished rows of the output.
template <class Work, class Operator, class Filter> class BoxFilterOutput
{
public:
    using Sum = typename SumOf<Work>::type;
    using View = typename Filter::OutputView;
    using Voxel = typename View::VoxelType;

    BoxFilterOutput(access::Block const& block, Filter& filter, BoxRange const& rows, BoxRange const& columns,
                    double area)
        : m_block(block)
        , m_filter(filter)
        , m_cache(filter.getOutputView()->createRowCacheReadWrite(1))
        // In place, rows are read again after later rows were written: all of them wait for the end of the slice.
        , m_isInPlace(
              access::areOnOneImage(filter.getInputView()->getInterface(), filter.getOutputView()->getInterface()))
        , m_sums(rows, columns)
        , m_area(area)
    {}

    /// `fetch(row)` gives the inside of a row, whose coordinate may lie outside of the image; `plan` counts from the
    /// begin of the block. False if the run was cancelled.
    template <class Fetch> bool run(long plan, Fetch const& fetch)
    {
        auto const take = [&](unsigned long row, Sum const* sums) {
            auto& out = m_cache->getRowInBlock(0, m_block.getNbCols(), m_block, 0, static_cast<long>(row), plan, 0, 0);
            finishRow<Work, Voxel>(sums, out.data(), m_block.getNbCols(), m_area, Operator());
            out.writeRow(m_isInPlace, 0, 0, 0, 0, 0, 0);
        };
        return m_sums.run(fetch, take, [&] { return m_filter.isCancelled(); });
    }

private:
    access::Block const& m_block;
    Filter& m_filter;
    boost::shared_ptr<access::RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    bool m_isInPlace;
    RowSums<Sum> m_sums;
    double m_area;
};

} // namespace qel::filtering::smoothing
