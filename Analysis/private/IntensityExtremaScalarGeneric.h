#pragma once

#include "Core/private/Access/IteratorPixel.h"

#include <tbb/blocked_range.h> // tbb::split

#include <algorithm>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace qel::analysis {

/// Several running extrema side by side, so that the loop over them is one of vectors. A NaN is passed over.
template <class T> struct ExtremaLanes
{
    /// GCC takes a loop of up to 16 steps apart before it looks for vectors, and then finds none. That is right for
    /// 64-bit integers alone, which have no vector comparison and so stay in registers.
    static constexpr std::size_t count = std::is_integral_v<T> && sizeof(T) == 8 ? 4 : sizeof(T) == 1 ? 64 : 32;

    T minima[count];
    T maxima[count];

    ExtremaLanes()
    {
        std::fill_n(minima, count, std::numeric_limits<T>::max());
        std::fill_n(maxima, count, std::numeric_limits<T>::lowest());
    }

    void add(T const* __restrict row, std::size_t voxels)
    {
        std::size_t x = 0;
        for (; x + count <= voxels; x += count)
            for (std::size_t lane = 0; lane < count; ++lane) {
                T const voxel = row[x + lane];
                minima[lane] = voxel < minima[lane] ? voxel : minima[lane];
                maxima[lane] = voxel > maxima[lane] ? voxel : maxima[lane];
            }
        for (std::size_t lane = 0; x + lane < voxels; ++lane) {
            T const voxel = row[x + lane];
            minima[lane] = voxel < minima[lane] ? voxel : minima[lane];
            maxima[lane] = voxel > maxima[lane] ? voxel : maxima[lane];
        }
    }

    T minimum() const { return *std::min_element(minima, minima + count); }
    T maximum() const { return *std::max_element(maxima, maxima + count); }
};

template <class T> class IntensityExtremaScalarGeneric
{
public:
    T minimum = std::numeric_limits<T>::max();
    T maximum = std::numeric_limits<T>::lowest();

    IntensityExtremaScalarGeneric() = default;
    IntensityExtremaScalarGeneric(IntensityExtremaScalarGeneric&, tbb::split) {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        ExtremaLanes<T> lanes;
        for (in.init(block); !in.atEnd(); in.nextRow())
            lanes.add(in.rowData(), in.rowLength());
        minimum = std::min(minimum, lanes.minimum());
        maximum = std::max(maximum, lanes.maximum());
    }

    void join(IntensityExtremaScalarGeneric& right)
    {
        minimum = std::min(minimum, right.minimum);
        maximum = std::max(maximum, right.maximum);
    }

    void finalize() {}
};

} // namespace qel::analysis
