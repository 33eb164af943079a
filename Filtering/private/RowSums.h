#pragma once

#include "Core/private/Access/BorderGeometry.h"
#include "Filtering/private/SlidingSums.h"

#include <algorithm>
#include <vector>

namespace qel::filtering::smoothing {

/// One axis of a block, with what a box reads around it.
struct BoxRange
{
    BoxRange(unsigned long begin, unsigned long end, unsigned long boxSide, unsigned long imageSize)
        : side(boxSide)
        , first(static_cast<long>(begin) - static_cast<long>(boxSide / 2))
        , count(end - begin)
        , image(static_cast<long>(imageSize))
        , insideBegin(std::max(first, 0l))
        , insideEnd(std::min(first + static_cast<long>(count + side) - 1, image))
    {}

    unsigned long inside() const { return static_cast<unsigned long>(insideEnd - insideBegin); }
    /// Where a coordinate that a box reads is found in the inside. A mirrored one is never further away than that.
    unsigned long indexOf(long coordinate) const
    {
        return static_cast<unsigned long>(access::mirrorCoordinate(coordinate, image) - insideBegin);
    }

    unsigned long side;
    long first;          // what the first box reads first
    unsigned long count; // how many boxes there are
    long image;
    long insideBegin; // of what boxes read, the part in the image
    long insideEnd;
};

/// The last stage: sums along rows, of a few rows at once.
template <class Sum> class LineSums
{
public:
    explicit LineSums(BoxRange const& columns)
        : m_columns(columns)
        , m_stride(columns.count + columns.side - 1)
        , m_lines(rowsAtOnce * m_stride)
    {
        if (columns.side > 1) {
            m_sums.resize(rowsAtOnce * columns.count);
            m_tails.resize(rowsAtOnce * columns.side);
        }
        auto const note = [&](long begin, long end) {
            for (long column = begin; column < end; ++column)
                m_mirrored.push_back(
                    {static_cast<unsigned long>(column - columns.first), columns.indexOf(column) + insideOffset()});
        };
        note(columns.first, columns.insideBegin);
        note(columns.insideEnd, columns.first + static_cast<long>(m_stride));
    }

    /// Where the sums of the columns in the image go.
    Sum* line(unsigned long index) { return m_lines.data() + index * m_stride + insideOffset(); }
    Sum const* result(unsigned long index) const
    {
        return m_columns.side > 1 ? m_sums.data() + index * m_columns.count : m_lines.data() + index * m_stride;
    }

    void run()
    {
        if (m_columns.side == 1)
            return;
        for (Copy const& copy : m_mirrored)
            for (unsigned long i = 0; i < rowsAtOnce; ++i)
                m_lines[i * m_stride + copy.to] = m_lines[i * m_stride + copy.from];
        long const side = static_cast<long>(m_columns.side);
        long const phase = ((m_columns.first % side) + side) % side;
        sumAlongRows(m_lines.data(), m_stride, m_sums.data(), m_columns.count, m_columns.count, m_columns.side,
                     static_cast<unsigned long>(phase), m_tails.data());
    }

private:
    struct Copy
    {
        unsigned long to;
        unsigned long from;
    };

    unsigned long insideOffset() const { return static_cast<unsigned long>(m_columns.insideBegin - m_columns.first); }

    BoxRange m_columns;
    unsigned long m_stride;
    std::vector<Sum> m_lines;
    std::vector<Sum> m_sums;
    std::vector<Sum> m_tails;
    std::vector<Copy> m_mirrored; // the same for each line
};

/// The last two stages: sums of the boxes of one plan, across rows and then along them.
template <class Sum> class RowSums
{
public:
    RowSums(BoxRange const& rows, BoxRange const& columns, bool isExact = std::is_integral_v<Sum>)
        : m_rows(rows)
        , m_sums(rows.side, columns.inside(), 1, isExact)
        , m_lines(columns)
    {}

    /// Takes finished rows, one call each: what is done with them is not compiled into the sums.
    class Sink
    {
    public:
        /// A row of sums, counted from the first, of the plan that was told.
        virtual void take(unsigned long plan, unsigned long row, Sum const* sums) = 0;
        /// Asked now and then.
        virtual bool isCancelled() const = 0;

    protected:
        ~Sink() = default;
    };

    /// `fetch(row)` gives the inside of a row, whose coordinate may lie outside of the image. False if the run was
    /// cancelled.
    template <class Fetch> bool run(Fetch const& fetch, unsigned long plan, Sink& sink)
    {
        auto const fetchRow = [&](long row, unsigned long) { return fetch(row); };
        m_sums.start(m_rows.first, fetchRow);
        for (unsigned long row = 0; row < m_rows.count; row += rowsAtOnce) {
            if (sink.isCancelled())
                return false;
            unsigned long const rows = std::min(rowsAtOnce, m_rows.count - row);
            for (unsigned long i = 0; i < rows; ++i)
                m_sums.next(fetchRow, [&](unsigned long) { return m_lines.line(i); });
            m_lines.run();
            for (unsigned long i = 0; i < rows; ++i)
                sink.take(plan, row + i, m_lines.result(i));
        }
        return true;
    }

private:
    BoxRange m_rows;
    SlidingSums<Sum> m_sums;
    LineSums<Sum> m_lines;
};

/// The rows of sums of a plan, as what boxes fetch: those outside of the image are mirrored.
template <class Sum> struct PlanRows
{
    Sum const* sums; // of the inside
    BoxRange const& rows;
    unsigned long length;

    Sum const* operator()(long row) const { return sums + rows.indexOf(row) * length; }
};

} // namespace qel::filtering::smoothing
