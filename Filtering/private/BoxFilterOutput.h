#pragma once

#include "Core/private/Access/Rows.h"
#include "Filtering/private/LineSums.h"
#include "Filtering/private/SlidingSums.h"

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
        , m_rows(rows)
        , m_sums(rows.side, columns.inside())
        , m_lines(columns)
        , m_area(area)
    {}

    /// `fetch(row)` gives the inside of a row, whose coordinate may lie outside of the image; `plan` counts from the
    /// begin of the block. False if the run was cancelled.
    template <class Fetch> bool run(long plan, Fetch const& fetch)
    {
        auto const fetchRow = [&](long row, unsigned long) { return fetch(row); };
        m_sums.start(m_rows.first, fetchRow);
        for (unsigned long row = 0; row < m_rows.count; row += rowsAtOnce) {
            if (m_filter.isCancelled())
                return false;
            unsigned long const rows = std::min(rowsAtOnce, m_rows.count - row);
            for (unsigned long i = 0; i < rows; ++i)
                m_sums.next(fetchRow, [&](unsigned long) { return m_lines.line(i); });
            m_lines.run();
            for (unsigned long i = 0; i < rows; ++i) {
                auto& out =
                    m_cache->getRowInBlock(0, m_block.getNbCols(), m_block, 0, static_cast<long>(row + i), plan, 0, 0);
                finishRow<Work, Voxel>(m_lines.result(i), out.data(), m_block.getNbCols(), m_area, Operator());
                out.writeRow(m_isInPlace, 0, 0, 0, 0, 0, 0);
            }
        }
        return true;
    }

private:
    access::Block const& m_block;
    Filter& m_filter;
    boost::shared_ptr<access::RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    bool m_isInPlace;
    BoxRange m_rows;
    SlidingSums<Sum> m_sums;
    LineSums<Sum> m_lines;
    double m_area;
};

} // namespace qel::filtering::smoothing
