#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "NonlinearFiltering/private/MedianFilter/MedianComputer.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

namespace qel::nonlinear_filtering {

/// What differs between planes and volumes.
template <class DimTag> struct MedianDimension;
template <> struct MedianDimension<Filter2dTag>
{
    using Offset = kernel::Offset2D;
    template <class View, class Computer> using Processor = access::SlidingWindowProcessor2D<View, Computer>;
    static std::vector<Offset> windowOf(MedianSettings const& settings)
    {
        return settings.isRound ? kernel::generateDiskOffset2DCollection(settings.radius)
                                : kernel::generateSquareOffset2DCollection(settings.radius);
    }
    static AlgoBorderInfluence reachOf(unsigned long radius) { return AlgoBorderInfluence(radius, radius, 0, 0, 0); }
};
template <> struct MedianDimension<Filter3dTag>
{
    using Offset = kernel::Offset3D;
    template <class View, class Computer> using Processor = access::SlidingWindowProcessor3D<View, Computer>;
    static std::vector<Offset> windowOf(MedianSettings const& settings)
    {
        return settings.isRound ? kernel::generateSphereOffset3DCollection(settings.radius)
                                : kernel::generateCubeOffset3DCollection(settings.radius);
    }
    static AlgoBorderInfluence reachOf(unsigned long radius)
    {
        return AlgoBorderInfluence(radius, radius, radius, 0, 0);
    }
};

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

template <class T, class DimTag, class Body> void runMedianBody(MedianFilterScalarPrivate& median, Body body)
{
    ImageToImageFilter<T, T, SimdVec::arch_scalar_tag, Body, DimTag, FilterWithoutReductionTag> filter(
        median.frameOwner(), &body);
    median.follow(filter);
    filter.setInput(median.settings().input, access::MirrorBorderCondition<T>::New());
    filter.setOutput(median.settings().output, access::FixedBorderCondition<T>::New(T(0)));
    filter.run();
}

template <class T, class DimTag> void runMedian(MedianFilterScalarPrivate& median)
{
    if constexpr (!std::is_floating_point_v<T>)
        if (median.info().useHistogram)
            return runMedianBody<T, DimTag>(median, OffsetCollectionToMedianWithSlidingWindow<DimTag, true>(median));
    runMedianBody<T, DimTag>(median, OffsetCollectionToMedianWithSlidingWindow<DimTag, false>(median));
}

} // namespace qel::nonlinear_filtering
