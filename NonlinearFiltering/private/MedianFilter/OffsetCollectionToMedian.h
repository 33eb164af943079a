#pragma once

#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/Frames.h"
#include "NonlinearFiltering/private/MedianFilter/MedianComputer.h"
#include "NonlinearFiltering/private/MedianFilter/MedianDimension.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

namespace qel::nonlinear_filtering {

/// The median under a window that slides along the rows of a block.
template <class DimTag, bool useHistogram> class OffsetCollectionToMedianWithSlidingWindow
{
public:
    using Dimension = MedianDimension<DimTag>;

    explicit OffsetCollectionToMedianWithSlidingWindow(MedianFilterScalarPrivate const& median)
        : m_info(median.info())
        , m_reach(Dimension::reachOf(median.settings().radius))
        , m_offsets(boost::make_shared<access::SlidingOffsets<typename Dimension::Offset>>(
              Dimension::windowOf(median.settings())))
    {}

    template <class Filter> void run(BlockOf<DimTag> const& block, Filter& filter)
    {
        using InView = typename Filter::InputView;
        using OutView = typename Filter::OutputView;
        using Computer = MedianComputer<typename InView::VoxelType, useHistogram>;

        Computer computer(m_info, m_offsets->all().size());
        typename Dimension::template Processor<InView, Computer> window(filter.getInputView(), m_offsets, &computer);
        access::IteratorPixelOutput<OutView, 1> out(
            filter.getOutputView(), false, overlapBetween(*filter.getInputView(), *filter.getOutputView(), m_reach));
        window.init(block);
        for (out.init(block); !out.atEnd(); ++out, ++window) {
            if (window.column() == 0 && filter.isCancelled())
                return; // a row may take long
            *out = computer.median();
        }
    }

private:
    details::MedianComputerInfo const& m_info;
    AlgoBorderInfluence m_reach;
    boost::shared_ptr<access::SlidingOffsets<typename Dimension::Offset> const> m_offsets;
};

} // namespace qel::nonlinear_filtering
