#pragma once

#include "Core/private/Access/Rows.h"
#include "Filtering/private/RowSums.h"

namespace qel::filtering::smoothing {

/// The insides of rows of one slice of an image, for sums over rows: named, and so compiled once for a voxel type.
template <class View> class SliceRows
{
public:
    SliceRows(View const& view, access::Block const& block, BoxRange const& columns)
        : m_view(view)
        , m_position{columns.insideBegin, 0, 0, static_cast<long>(block.timeSeriesBegin()),
                     static_cast<long>(block.spectralSeriesBegin())}
        , m_voxels(columns.inside())
    {}

    /// Coordinates may lie outside of the image. Valid until the next call.
    typename View::VoxelType const* fetch(long plan, long row)
    {
        m_position.plan = access::mirrorCoordinate(plan, static_cast<long>(m_view.numOfPlans()));
        m_position.row = access::mirrorCoordinate(row, static_cast<long>(m_view.numOfRows()));
        m_view.read(m_voxels.data(), m_voxels.size(), m_position);
        return m_voxels.data();
    }

private:
    View const& m_view;
    access::RowPosition m_position;
    std::vector<typename View::VoxelType> m_voxels;
};

/// Finishes rows of sums and writes them to the output.
template <class Work, class Operator, class Filter>
class BoxFilterOutput final : public RowSums<typename SumOf<Work>::type>::Sink
{
public:
    using Sum = typename SumOf<Work>::type;
    using View = typename Filter::OutputView;

    BoxFilterOutput(access::Block const& block, Filter const& filter, double area)
        : m_block(block)
        , m_filter(filter)
        , m_cache(filter.getOutputView()->createRowCacheReadWrite(1))
        // In place, rows are read again after later rows were written: all of them wait for the end of the slice.
        , m_isInPlace(
              access::areOnOneImage(filter.getInputView()->getInterface(), filter.getOutputView()->getInterface()))
        , m_area(area)
    {}

    /// Both are counted from the begin of the block.
    void take(unsigned long plan, unsigned long row, Sum const* sums) override
    {
        auto& out = m_cache->getRowInBlock(0, m_block.getNbCols(), m_block, 0, static_cast<long>(row),
                                           static_cast<long>(plan), 0, 0);
        finishRow<Work, typename View::VoxelType>(sums, out.data(), m_block.getNbCols(), m_area, Operator());
        out.writeRow(m_isInPlace, 0, 0, 0, 0, 0, 0);
    }
    bool isCancelled() const override { return m_filter.isCancelled(); }

private:
    access::Block const& m_block;
    Filter const& m_filter;
    boost::shared_ptr<access::RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    bool m_isInPlace;
    double m_area;
};

} // namespace qel::filtering::smoothing
