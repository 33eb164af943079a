#pragma once

// For the units of the packet kernels alone.
#include "LinearFiltering/private/FIRKernels.h"

#include <xsimd/xsimd.hpp>

namespace qel::linear_filtering {

/// `numOfPackets` neighbouring packets: their sums stay in registers over all points.
template <class Arch, class T, int numOfPackets>
[[gnu::always_inline]] inline void sumPackets(T const* const* rows, T const* weights, std::size_t points, T* out,
                                              std::size_t x)
{
    using Packet = xsimd::batch<T, Arch>;
    Packet sums[numOfPackets];
    for (int i = 0; i < numOfPackets; ++i)
        sums[i] = Packet(T(0));
    for (std::size_t point = 0; point < points; ++point) {
        T const* const row = rows[point] + x;
        Packet const weight(weights[point]);
        for (int i = 0; i < numOfPackets; ++i)
            sums[i] = sums[i] + weight * Packet::load_unaligned(row + i * Packet::size);
    }
    for (int i = 0; i < numOfPackets; ++i)
        sums[i].store_unaligned(out + x + i * Packet::size);
}

template <class Arch, class T>
void weightedSumOfPackets(T const* const* rows, T const* weights, std::size_t points, T* out, std::size_t count)
{
    constexpr std::size_t size = xsimd::batch<T, Arch>::size;
    std::size_t x = 0;
    for (; x + 8 * size <= count; x += 8 * size)
        sumPackets<Arch, T, 8>(rows, weights, points, out, x);
    if (x + 4 * size <= count) {
        sumPackets<Arch, T, 4>(rows, weights, points, out, x);
        x += 4 * size;
    }
    if (x + 2 * size <= count) {
        sumPackets<Arch, T, 2>(rows, weights, points, out, x);
        x += 2 * size;
    }
    if (x + size <= count) {
        sumPackets<Arch, T, 1>(rows, weights, points, out, x);
        x += size;
    }
    if (x == count)
        return;
    if (count >= size) {
        // The last packet overlaps the one before: the same sums once more.
        sumPackets<Arch, T, 1>(rows, weights, points, out, count - size);
        return;
    }
    for (; x < count; ++x) {
        T sum(0);
        for (std::size_t point = 0; point < points; ++point)
            sum = sum + weights[point] * rows[point][x];
        out[x] = sum;
    }
}

} // namespace qel::linear_filtering
