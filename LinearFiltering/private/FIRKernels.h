#pragma once

#include <cstddef>

// The row kernels of filters by a weighted neighbourhood. Lanes are voxels: within a voxel all of them multiply and add
// in the order of the points, and so give the same bits.

namespace qel::linear_filtering {

/// out[x] = the sum of weights[i] * rows[i][x] over `points` points, in their order, beginning with 0. `out` overlaps
/// none of the rows.
template <class T>
using WeightedSum = void (*)(T const* const* rows, T const* weights, std::size_t points, T* out, std::size_t count);

/// By voxels, for every processor.
template <class T>
void weightedSumOfRows(T const* const* rows, T const* weights, std::size_t points, T* out, std::size_t count);

/// By packets of an architecture.
template <class Arch, class T>
void weightedSumOfPackets(T const* const* rows, T const* weights, std::size_t points, T* out, std::size_t count);

/// Whether this processor has packets of SSE 4.1.
bool hasPackets();

/// The fastest of them on this processor.
template <class T> WeightedSum<T> weightedSumOfProcessor();

} // namespace qel::linear_filtering
