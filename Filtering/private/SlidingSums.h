#pragma once

#include "Filtering/private/BoxKernels.h"

#include <vector>

namespace qel::filtering::smoothing {

/// Sums of `size` successive rows, for one row after the other. A row may consist of several pieces: a plan is a row of
/// rows, as far as sums across plans go.
///
/// The rows are cut into segments at multiples of a fixed length, counted in the image's coordinates. Each sum is
/// (tail of its first segment, summed from its end) + ((whole segments between, from the first on) + (head of the last
/// segment, from its begin)). That depends on the row's coordinate alone, and nothing is ever subtracted: no error is
/// carried from row to row. The length is about the root of the size, so that one segment of tails and one total for
/// each segment are all that is kept, and the additions for a row stay below five for any size.
///
/// Sums of whole numbers are exact in any order: integers wrap back, and doubles hold them up to 2^53. There the row
/// that leaves is subtracted, and one row of sums is all that is kept.
template <class Sum> class SlidingSums
{
public:
    /// `isExact`: no sum has to be rounded.
    SlidingSums(unsigned long size, unsigned long pieceLength, unsigned long pieces = 1,
                bool isExact = std::is_integral_v<Sum>)
        : m_size(static_cast<long>(size))
        , m_segment(segmentFor(m_size))
        , m_slots((m_size - 1) / m_segment + 1)
        , m_pieceLength(pieceLength)
        , m_pieces(pieces)
        , m_rowLength(pieceLength * pieces)
        , m_isExact(isExact)
    {
        if (m_size == 1)
            return;
        if (m_isExact) {
            m_middle.resize(m_rowLength);
            return;
        }
        m_tails.resize(static_cast<unsigned long>(m_segment) * m_rowLength);
        m_totals.resize(static_cast<unsigned long>(m_slots) * m_rowLength);
        m_middle.resize(m_rowLength);
    }

    /// The next sum will be that of the rows from `first` on. `fetch(row, piece)` gives a pointer to the voxels of a
    /// row, valid until the next call; rows are asked for more than once.
    template <class Fetch> void start(long first, Fetch const& fetch)
    {
        m_first = first;
        if (m_size == 1)
            return;
        if (m_isExact) {
            std::fill(m_middle.begin(), m_middle.end(), Sum(0));
            for (long row = first; row < first + m_size - 1; ++row)
                for (unsigned long piece = 0; piece < m_pieces; ++piece)
                    addRow(fetch(row, piece), m_middle.data() + piece * m_pieceLength, m_pieceLength);
            return;
        }
        m_firstSegment = segmentOf(first);
        computeTails(fetch);
        m_hasMiddle = false;
        for (long row = (m_firstSegment + 1) * m_segment; row < first + m_size - 1; ++row) {
            reach(row);
            for (unsigned long piece = 0; piece < m_pieces; ++piece)
                addRow(fetch(row, piece), total(segmentOf(row)) + piece * m_pieceLength, m_pieceLength);
        }
    }

    /// Writes the sum of the present rows, and moves on by one row. `out(piece)` is where the sum of a piece goes.
    template <class Fetch, class Out> void next(Fetch const& fetch, Out const& out)
    {
        if (m_size == 1) {
            for (unsigned long piece = 0; piece < m_pieces; ++piece)
                convertRow(fetch(m_first, piece), out(piece), m_pieceLength);
            ++m_first;
            return;
        }
        long const last = m_first + m_size - 1;
        if (m_isExact) {
            for (unsigned long piece = 0; piece < m_pieces; ++piece) {
                Sum* const sums = m_middle.data() + piece * m_pieceLength;
                addRows(fetch(last, piece), sums, out(piece), m_pieceLength);
                leaveRow(fetch(m_first, piece), out(piece), sums, m_pieceLength);
            }
            ++m_first;
            return;
        }
        if (segmentOf(m_first) != m_firstSegment)
            leaveSegment(fetch);
        reach(last);
        Sum const* const tail = m_tails.data() + static_cast<unsigned long>(offsetOf(m_first)) * m_rowLength;
        Sum* const head = total(segmentOf(last));
        for (unsigned long piece = 0; piece < m_pieces; ++piece) {
            unsigned long const at = piece * m_pieceLength;
            if (m_hasMiddle)
                enterRow(fetch(last, piece), tail + at, m_middle.data() + at, head + at, out(piece), m_pieceLength);
            else
                enterRow(fetch(last, piece), tail + at, head + at, out(piece), m_pieceLength);
        }
        ++m_first;
    }

private:
    /// A power of two near the root. A sum always reaches beyond its first segment.
    static long segmentFor(long size)
    {
        long length = 1;
        while (length * length < size && 2 * length < size)
            length *= 2;
        return length;
    }
    long segmentOf(long row) const { return (row - offsetOf(row)) / m_segment; }
    long offsetOf(long row) const { return row & (m_segment - 1); }
    Sum* total(long segment)
    {
        long const slot = segment % m_slots;
        return m_totals.data() + static_cast<unsigned long>(slot < 0 ? slot + m_slots : slot) * m_rowLength;
    }

    /// Of the first segment, from the first row on.
    template <class Fetch> void computeTails(Fetch const& fetch)
    {
        long const begin = m_firstSegment * m_segment;
        long const end = begin + m_segment;
        for (long row = end - 1; row >= m_first; --row) {
            Sum* const tail = m_tails.data() + static_cast<unsigned long>(row - begin) * m_rowLength;
            for (unsigned long piece = 0; piece < m_pieces; ++piece) {
                unsigned long const at = piece * m_pieceLength;
                if (row == end - 1)
                    convertRow(fetch(row, piece), tail + at, m_pieceLength);
                else
                    addRows(fetch(row, piece), tail + m_rowLength + at, tail + at, m_pieceLength);
            }
        }
    }

    /// At the begin of a segment, its total starts at 0, and the segment before becomes one of those between.
    void reach(long row)
    {
        if (offsetOf(row) != 0)
            return;
        long const segment = segmentOf(row);
        if (segment - 1 > m_firstSegment)
            addToMiddle(segment - 1);
        std::fill_n(total(segment), m_rowLength, Sum(0));
    }

    template <class Fetch> void leaveSegment(Fetch const& fetch)
    {
        ++m_firstSegment;
        computeTails(fetch);
        m_hasMiddle = false;
        // The row before the one that comes next was the last one to be added.
        for (long segment = m_firstSegment + 1; segment < segmentOf(m_first + m_size - 2); ++segment)
            addToMiddle(segment);
    }

    void addToMiddle(long segment)
    {
        if (m_hasMiddle)
            addRow(total(segment), m_middle.data(), m_rowLength);
        else
            std::copy_n(total(segment), m_rowLength, m_middle.data());
        m_hasMiddle = true;
    }

    long m_size;
    long m_segment;
    long m_slots;
    unsigned long m_pieceLength;
    unsigned long m_pieces;
    unsigned long m_rowLength;
    bool m_isExact;
    long m_first = 0;
    long m_firstSegment = 0;
    bool m_hasMiddle = false;
    std::vector<Sum> m_tails;  // of the first segment, a row for each of its rows
    std::vector<Sum> m_totals; // of the segments behind it; the last one is still growing
    std::vector<Sum> m_middle; // the whole segments between; of exact sums, all rows but the last
};

} // namespace qel::filtering::smoothing
