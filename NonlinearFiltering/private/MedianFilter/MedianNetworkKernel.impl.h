#pragma once

#include "NonlinearFiltering/private/MedianFilter/MedianNetworkKernel.h"

namespace qel::nonlinear_filtering {

template <class Arch, class T>
void runNetwork(NetworkStep const* steps, unsigned long count, T* const* registers, unsigned long lanes)
{
    for (unsigned long at = 0; at < count; ++at) {
        NetworkStep const& step = steps[at];
        T const* __restrict const first = registers[step.first] + step.firstLane;
        T const* __restrict const second = registers[step.second] + step.secondLane;
        unsigned long const size = (lanes + step.excess + networkPacket<T> - 1) / networkPacket<T> * networkPacket<T>;
        if (step.maximum == NetworkStep::none) {
            T* __restrict const minimum = registers[step.minimum];
#pragma GCC ivdep
            for (unsigned long x = 0; x < size; ++x)
                minimum[x] = first[x] < second[x] ? first[x] : second[x];
        } else if (step.minimum == NetworkStep::none) {
            T* __restrict const maximum = registers[step.maximum];
#pragma GCC ivdep
            for (unsigned long x = 0; x < size; ++x)
                maximum[x] = first[x] < second[x] ? second[x] : first[x];
        } else {
            T* __restrict const minimum = registers[step.minimum];
            T* __restrict const maximum = registers[step.maximum];
#pragma GCC ivdep
            for (unsigned long x = 0; x < size; ++x) {
                T const a = first[x];
                T const b = second[x];
                minimum[x] = a < b ? a : b;
                maximum[x] = a < b ? b : a;
            }
        }
    }
}

template <class Arch, class T>
void medianOf9(T const* above, T const* here, T const* below, T* __restrict medians, unsigned long count)
{
#pragma GCC ivdep
    for (unsigned long x = 0; x < count; ++x) {
        T low[3], middle[3], high[3];
#pragma GCC unroll 3
        for (int column = 0; column < 3; ++column) {
            T const a = above[x + static_cast<unsigned long>(column) - 1];
            T const b = here[x + static_cast<unsigned long>(column) - 1];
            T const c = below[x + static_cast<unsigned long>(column) - 1];
            T const smaller = a < b ? a : b;
            T const larger = a < b ? b : a;
            T const rest = larger < c ? larger : c;
            high[column] = larger < c ? c : larger;
            low[column] = smaller < rest ? smaller : rest;
            middle[column] = smaller < rest ? rest : smaller;
        }
        // The median is the middle one of the largest low, the middle middle and the smallest high.
        T const someLow = low[0] < low[1] ? low[1] : low[0];
        T const someHigh = high[0] < high[1] ? high[0] : high[1];
        T const lowest = someLow < low[2] ? low[2] : someLow;
        T const highest = someHigh < high[2] ? someHigh : high[2];
        T const smaller = middle[0] < middle[1] ? middle[0] : middle[1];
        T const larger = middle[0] < middle[1] ? middle[1] : middle[0];
        T const rest = larger < middle[2] ? larger : middle[2];
        T const central = smaller < rest ? rest : smaller;
        T const least = lowest < central ? lowest : central;
        T const most = lowest < central ? central : lowest;
        T const inner = most < highest ? most : highest;
        medians[x] = least < inner ? inner : least;
    }
}

} // namespace qel::nonlinear_filtering

/// For the eight types of keys.
#define QEL_NETWORK_KERNELS(Prefix, Arch)                                                                              \
    QEL_NETWORK_KERNEL(Prefix, Arch, unsigned char)                                                                    \
    QEL_NETWORK_KERNEL(Prefix, Arch, unsigned short)                                                                   \
    QEL_NETWORK_KERNEL(Prefix, Arch, unsigned int)                                                                     \
    QEL_NETWORK_KERNEL(Prefix, Arch, unsigned long)                                                                    \
    QEL_NETWORK_KERNEL(Prefix, Arch, signed char)                                                                      \
    QEL_NETWORK_KERNEL(Prefix, Arch, short)                                                                            \
    QEL_NETWORK_KERNEL(Prefix, Arch, int)                                                                              \
    QEL_NETWORK_KERNEL(Prefix, Arch, long)
#define QEL_NETWORK_KERNEL(Prefix, Arch, T)                                                                            \
    Prefix template void runNetwork<Arch, T>(NetworkStep const*, unsigned long, T* const*, unsigned long);             \
    Prefix template void medianOf9<Arch, T>(T const*, T const*, T const*, T*, unsigned long);
