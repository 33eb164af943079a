#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <type_traits>

namespace qel::access {

inline RowPosition inImage(Block const& block, long column, long row, long plan, long timeSeries, long spectralSeries)
{
    return {static_cast<long>(block.colsBegin()) + column, static_cast<long>(block.rowsBegin()) + row,
            static_cast<long>(block.plansBegin()) + plan, static_cast<long>(block.timeSeriesBegin()) + timeSeries,
            static_cast<long>(block.spectralSeriesBegin()) + spectralSeries};
}

template <class View, class Alloc>
boost::shared_ptr<OuputRow<View, Alloc>> OuputRow<View, Alloc>::New(OuputRow const& other)
{
    return boost::make_shared<OuputRow>(other);
}

template <class View, class Alloc>
boost::shared_ptr<OuputRow<View, Alloc>> OuputRow<View, Alloc>::New(OuputRow const& other, unsigned long count,
                                                                    unsigned long offset)
{
    if (offset > other.size() || count > other.size() - offset)
        QEL_THROW(UnexpectedError, "Impossible use of OuputRow partial copy constructor");
    auto part = boost::make_shared<OuputRow>(other.m_slot, other.m_view);
    part->m_position = other.m_position;
    part->m_position.column += static_cast<long>(offset);
    part->m_voxels.assign(other.data() + offset, other.data() + offset + count);
    return part;
}

template <class View, class Alloc>
void OuputRow<View, Alloc>::writeRow(bool deferMargins, long rowsBegin, long rowsEnd, long plansBegin, long plansEnd,
                                     long colsBegin, long colsEnd) const
{
    write(deferMargins, {rowsBegin, rowsEnd, plansBegin, plansEnd, colsBegin, colsEnd}, 0, this->size());
}

template <class View, class Alloc>
void OuputRow<View, Alloc>::writeRow(Block const& block, OverlapBorder const& overlap) const
{
    writeRow(safeBoxOf(block, overlap, *m_view));
}

template <class View, class Alloc>
typename OuputRow<View, Alloc>::SafeBox OuputRow<View, Alloc>::safeBoxOf(Block const& block,
                                                                         OverlapBorder const& overlap, View const& view)
{
    auto const begin = [](unsigned long blockBegin, unsigned long margin) {
        return static_cast<long>(blockBegin == 0 ? blockBegin : blockBegin + margin);
    };
    // An exclusive end is compared with the last index: a block at the very edge defers its upper margin all the same.
    // That changes when a row is written, never what.
    auto const end = [](unsigned long blockEnd, unsigned long margin, unsigned long size) {
        return blockEnd + 1 == size ? static_cast<long>(blockEnd)
                                    : static_cast<long>(blockEnd) - static_cast<long>(margin);
    };
    return {begin(block.rowsBegin(), overlap.rowsLower),   end(block.rowsEnd(), overlap.rowsUpper, view.numOfRows()),
            begin(block.plansBegin(), overlap.plansLower), end(block.plansEnd(), overlap.plansUpper, view.numOfPlans()),
            begin(block.colsBegin(), overlap.colsLower),   end(block.colsEnd(), overlap.colsUpper, view.numOfCols())};
}

template <class View, class Alloc> void OuputRow<View, Alloc>::defer(long first, long last) const
{
    m_view->temporizeRowWriting(New(*this, static_cast<unsigned long>(last - first + 1),
                                    static_cast<unsigned long>(first - m_position.column)));
}

template <class View, class Alloc>
void OuputRow<View, Alloc>::write(bool deferMargins, SafeBox const& box, unsigned long offset,
                                  unsigned long count) const
{
    auto const isOutside = [](long index, unsigned long size) { return index < 0 || index >= static_cast<long>(size); };
    if (isOutside(m_position.spectralSeries, m_view->numOfSpectralSeries()) ||
        isOutside(m_position.timeSeries, m_view->numOfTimeSeries()) ||
        isOutside(m_position.plan, m_view->numOfPlans()) || isOutside(m_position.row, m_view->numOfRows()))
        return;

    // From here on columns of the image, the last one included.
    long first = m_position.column + static_cast<long>(offset);
    long last = std::min(first + static_cast<long>(count), static_cast<long>(m_view->numOfCols())) - 1;
    first = std::max(first, 0l);
    if (first > last)
        return;

    if (deferMargins) {
        if (m_position.row < box.rowsBegin || m_position.row >= box.rowsEnd || m_position.plan < box.plansBegin ||
            m_position.plan >= box.plansEnd || last < box.colsBegin || first >= box.colsEnd) {
            defer(first, last);
            return;
        }
        if (first < box.colsBegin) {
            defer(first, box.colsBegin - 1);
            first = box.colsBegin;
        }
        if (last >= box.colsEnd) {
            // In a block narrower than its two margins nothing is left between them.
            defer(std::max(first, box.colsEnd), last);
            last = box.colsEnd - 1;
        }
        if (first > last)
            return;
    }

    VoxelType const* const voxels = this->data() + (first - m_position.column);
    if (!m_view->getInterface()->writeRowAt(
            static_cast<unsigned long>(last - first + 1), reinterpret_cast<unsigned char const*>(voxels),
            static_cast<unsigned long>(first), static_cast<unsigned long>(m_position.row),
            static_cast<unsigned long>(m_position.plan), static_cast<unsigned long>(m_position.timeSeries),
            static_cast<unsigned long>(m_position.spectralSeries)))
        QEL_THROW(UnexpectedError, "Error in writeRowAt implementation, return value is false");
}

template <class View, class Row> void RowSlots<View, Row>::makeRows(unsigned long count)
{
    while (m_rows.size() < count) {
        if constexpr (std::is_constructible_v<Row, unsigned long, View*>)
            m_rows.push_back(boost::make_shared<Row>(m_rows.size(), m_view));
        else
            m_rows.push_back(boost::make_shared<Row>(m_rows.size()));
    }
}

template <class View, class Alloc>
InputRow<View, Alloc>& RowCacheRead<View, Alloc>::fetchRowInBlock(unsigned long slot, unsigned long count,
                                                                  Block const& block, long column, long row, long plan,
                                                                  long timeSeries, long spectralSeries) const
{
    return fetchRow(slot, count, inImage(block, column, row, plan, timeSeries, spectralSeries));
}

template <class View, class Alloc>
InputRow<View, Alloc>& RowCacheRead<View, Alloc>::fetchRowInImage(unsigned long slot, unsigned long count, long column,
                                                                  long row, long plan, long timeSeries,
                                                                  long spectralSeries) const
{
    return fetchRow(slot, count, {column, row, plan, timeSeries, spectralSeries});
}

template <class View, class Alloc>
OuputRow<View, Alloc>& RowCacheReadWrite<View, Alloc>::fetchRowInBlock(unsigned long slot, unsigned long count,
                                                                       Block const& block, long column, long row,
                                                                       long plan, long timeSeries,
                                                                       long spectralSeries) const
{
    return fetchRow(slot, count, inImage(block, column, row, plan, timeSeries, spectralSeries));
}

template <class View, class Alloc>
OuputRow<View, Alloc>&
RowCacheReadWrite<View, Alloc>::getRowInBlock(unsigned long slot, unsigned long count, Block const& block, long column,
                                              long row, long plan, long timeSeries, long spectralSeries) const
{
    return getRow(slot, count, inImage(block, column, row, plan, timeSeries, spectralSeries));
}

template <class View, class Plan> PlanSlots<View, Plan>::PlanSlots(View* view, unsigned long slots)
{
    for (unsigned long slot = 0; slot < slots; ++slot)
        m_plans.push_back(boost::make_shared<Plan>(view, slot));
}

template <class View, class Plan>
Plan& PlanSlots<View, Plan>::fetchPlanInBlock(unsigned long slot, unsigned long cols, unsigned long rows,
                                              Block const& block, long column, long row, long plan, long timeSeries,
                                              long spectralSeries) const
{
    Plan& target = getPlan(slot);
    target.setRowCount(rows);
    for (unsigned long i = 0; i < rows; ++i)
        target.fetchRowInBlock(i, cols, block, column, row + static_cast<long>(i), plan, timeSeries, spectralSeries);
    return target;
}

template <class View, class Alloc>
OutputPlan<View, Alloc>& PlanCacheReadWrite<View, Alloc>::getPlanInBlock(unsigned long slot, unsigned long cols,
                                                                         unsigned long rows, Block const& block,
                                                                         long column, long row, long plan,
                                                                         long timeSeries, long spectralSeries) const
{
    Plan& target = this->getPlan(slot);
    target.setRowCount(rows);
    for (unsigned long i = 0; i < rows; ++i)
        target.getRowInBlock(i, cols, block, column, row + static_cast<long>(i), plan, timeSeries, spectralSeries);
    return target;
}

} // namespace qel::access
