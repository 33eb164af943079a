#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "NonlinearFiltering/private/MedianFilter/ColumnHistogramsToMedian.h"
#include "NonlinearFiltering/private/MedianFilter/OffsetCollectionToMedian.h"
#include "NonlinearFiltering/private/MedianFilter/RowNetworkToMedian.h"

#include <boost/make_shared.hpp>

#include <limits>

namespace qel::nonlinear_filtering {

template <class T, class DimTag, class Body>
void runMedianBody(MedianFilterScalarPrivate& median, Body body,
                   boost::shared_ptr<AbstractPartitionerPolicy> blocks = nullptr)
{
    ImageToImageFilter<T, T, SimdVec::arch_scalar_tag, Body, DimTag, FilterWithoutReductionTag> filter(
        median.frameOwner(), &body);
    median.follow(filter);
    if (blocks) {
        filter.setPartitionerInformation(blocks);
        filter.setBlocksAreFixed(true);
    }
    filter.setInput(median.settings().input, access::MirrorBorderCondition<T>::New());
    filter.setOutput(median.settings().output, access::FixedBorderCondition<T>::New(T(0)));
    filter.run();
}

/// With the keys that the rows of the run shall have. False where one of the told methods is faster.
template <class T, class DimTag, class Keys> bool runFastMedian(MedianFilterScalarPrivate& median, Keys const& keys)
{
    using Dimension = MedianDimension<DimTag>;
    constexpr bool hasBytes = std::is_same_v<typename Keys::Key, unsigned char>;
    MedianSettings const& settings = median.settings();
    bool const isForColumns =
        hasBytes && !Dimension::isVolume && !settings.isRound && settings.radius <= ColumnHistograms::largestRadius;

    if (Dimension::voxelsOfBox(settings.radius) <= largestNetwork) {
        std::vector<typename Dimension::Offset> const window = Dimension::windowOf(settings);
        unsigned long const moving =
            static_cast<unsigned long>(Dimension::voxelsOfBox(settings.radius)) / (2 * settings.radius + 1ul);
        unsigned long const others = isForColumns                 ? MedianCosts::ofColumns
                                     : median.info().useHistogram ? MedianCosts::ofHistogram(moving)
                                                                  : MedianCosts::ofSelection(window.size());
        SelectionNetwork network(window);
        if (MedianCosts::ofNetwork(network, sizeof(typename Keys::Key)) <= others) {
            runMedianBody<T, DimTag>(median, RowNetworkToMedian<DimTag, Keys>(std::move(network), settings, keys),
                                     Dimension::isVolume ? boost::make_shared<PartitionerInfoFixed>(256, 32, 32)
                                                         : boost::make_shared<PartitionerInfoFixed>(2048, 64, 1));
            return true;
        }
    }
    if constexpr (hasBytes && !Dimension::isVolume)
        if (isForColumns) {
            // Each block begins with the histograms of as many rows as the window has.
            runMedianBody<T, DimTag>(median, ColumnHistogramsToMedian<Keys>(median, keys),
                                     boost::make_shared<PartitionerInfoFixed>(512, 256, 1));
            return true;
        }
    return false;
}

template <class T, class DimTag> void runMedian(MedianFilterScalarPrivate& median)
{
    constexpr bool isInteger = !std::is_floating_point_v<T>;
    if constexpr (isInteger && !std::is_same_v<T, unsigned char>)
        if (sizeof(T) == 1 || median.hasNarrowRange()) {
            T const minimum = sizeof(T) == 1 ? std::numeric_limits<T>::min() : T(median.info().minimum.asUInt64(FLOOR));
            if (runFastMedian<T, DimTag>(median, ByteKeys<T>{minimum}))
                return;
        }
    if (runFastMedian<T, DimTag>(median, NativeKeys<T>()))
        return;
    if constexpr (isInteger)
        if (median.info().useHistogram)
            return runMedianBody<T, DimTag>(median, OffsetCollectionToMedianWithSlidingWindow<DimTag, true>(median));
    runMedianBody<T, DimTag>(median, OffsetCollectionToMedianWithSlidingWindow<DimTag, false>(median));
}

} // namespace qel::nonlinear_filtering
