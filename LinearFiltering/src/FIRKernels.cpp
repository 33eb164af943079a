#include "LinearFiltering/private/FIRKernels.h"

#include <algorithm>

namespace qel::linear_filtering {

namespace {

template <class T> void addWeighted(T const* __restrict row, T weight, T* __restrict sum, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        sum[x] = sum[x] + weight * row[x];
}

} // namespace

template <class T>
void weightedSumOfRows(T const* const* rows, T const* weights, std::size_t points, T* out, std::size_t count)
{
    std::fill_n(out, count, T(0));
    for (std::size_t point = 0; point < points; ++point)
        addWeighted(rows[point], weights[point], out, count);
}

template void weightedSumOfRows(float const* const*, float const*, std::size_t, float*, std::size_t);
template void weightedSumOfRows(double const* const*, double const*, std::size_t, double*, std::size_t);

} // namespace qel::linear_filtering
