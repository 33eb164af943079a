#pragma once

#include "Analysis/private/IntensityExtremaScalarGeneric.h"

#include <cmath>
#include <type_traits>

namespace qel::analysis {

/// Sum and sum of squares of one row. Narrow integers add up exactly, in chunks that fit narrow totals; all others in
/// doubles, side by side in a fixed order.
template <class T> void addRow(T const* row, std::size_t voxels, double& sum, double& sumOfSquares)
{
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) {
        constexpr std::size_t chunk = 32768;
        for (std::size_t begin = 0; begin < voxels; begin += chunk) {
            std::size_t const end = std::min(voxels, begin + chunk);
            int total = 0;
            std::conditional_t<sizeof(T) == 1, unsigned int, unsigned long> squares = 0;
            for (std::size_t x = begin; x < end; ++x) {
                int const voxel = row[x];
                total += voxel;
                squares += static_cast<unsigned int>(voxel) * static_cast<unsigned int>(voxel);
            }
            sum += total;
            sumOfSquares += static_cast<double>(squares);
        }
    } else {
        constexpr std::size_t lanes = 8;
        double totals[lanes] = {};
        double squares[lanes] = {};
        std::size_t x = 0;
        for (; x + lanes <= voxels; x += lanes)
            for (std::size_t lane = 0; lane < lanes; ++lane) {
                double const voxel = static_cast<double>(row[x + lane]);
                totals[lane] += voxel;
                squares[lane] += voxel * voxel;
            }
        for (std::size_t lane = 0; x + lane < voxels; ++lane) {
            double const voxel = static_cast<double>(row[x + lane]);
            totals[lane] += voxel;
            squares[lane] += voxel * voxel;
        }
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            sum += totals[lane];
            sumOfSquares += squares[lane];
        }
    }
}

template <class T> class IntensityStatisticsScalarGeneric
{
public:
    T minimum = std::numeric_limits<T>::max();
    T maximum = std::numeric_limits<T>::lowest();
    unsigned long count = 0;
    double sum = 0;
    double sumOfSquares = 0;
    double mean = 0;
    double standardDeviation = 0;

    IntensityStatisticsScalarGeneric() = default;
    IntensityStatisticsScalarGeneric(IntensityStatisticsScalarGeneric&, tbb::split) {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        ExtremaLanes<T> lanes;
        for (in.init(block); !in.atEnd(); in.nextRow()) {
            lanes.add(in.rowData(), in.rowLength());
            addRow(in.rowData(), in.rowLength(), sum, sumOfSquares);
            count += in.rowLength();
        }
        minimum = std::min(minimum, lanes.minimum());
        maximum = std::max(maximum, lanes.maximum());
    }

    void join(IntensityStatisticsScalarGeneric& right)
    {
        minimum = std::min(minimum, right.minimum);
        maximum = std::max(maximum, right.maximum);
        count += right.count;
        sum += right.sum;
        sumOfSquares += right.sumOfSquares;
    }

    void finalize()
    {
        double const voxels = static_cast<double>(count);
        mean = sum / voxels;
        standardDeviation = std::sqrt(sumOfSquares / voxels - mean * mean);
    }
};

} // namespace qel::analysis
