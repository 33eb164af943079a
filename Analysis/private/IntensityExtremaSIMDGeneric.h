#pragma once

#include "Analysis/private/IntensityExtremaSSEKernel.h"
#include "Core/private/Access/IteratorPixel.h"

#include <tbb/blocked_range.h> // tbb::split

#include <algorithm>
#include <limits>

namespace qel::analysis {

/// Rows are padded to whole packets. Bind the input with a ContinueBorderCondition: the padding is then made of copies
/// of the last voxel, or of its real neighbours, and changes no extremum.
template <class T, class Arch> class IntensityExtremaSIMDGeneric
{
public:
    T minimum = std::numeric_limits<T>::max();
    T maximum = std::numeric_limits<T>::lowest();

    IntensityExtremaSIMDGeneric() = default;
    IntensityExtremaSIMDGeneric(IntensityExtremaSIMDGeneric&, tbb::split) {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        constexpr int lanes = access::packetSizeOf<T>;
        alignas(16) T minima[lanes];
        alignas(16) T maxima[lanes];
        std::fill_n(minima, lanes, minimum);
        std::fill_n(maxima, lanes, maximum);

        access::IteratorPixelInput<typename Filter::InputView, lanes> in(filter.getInputView());
        for (in.init(block, true); !in.atEnd(); in.nextRow())
            extremaOfPackets<Arch>(in.rowData(), in.paddedRowLength() / lanes, minima, maxima);

        minimum = *std::min_element(minima, minima + lanes);
        maximum = *std::max_element(maxima, maxima + lanes);
    }

    void join(IntensityExtremaSIMDGeneric& right)
    {
        minimum = std::min(minimum, right.minimum);
        maximum = std::max(maximum, right.maximum);
    }

    void finalize() {}
};

} // namespace qel::analysis
