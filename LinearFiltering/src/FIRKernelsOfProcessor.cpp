#include "LinearFiltering/private/FIRKernels.h"

#include <qel/devices/Cpu.h>

namespace xsimd { // their packets are seen by the kernels' units alone
struct sse4_1;
struct avx2;
} // namespace xsimd

namespace qel::linear_filtering {

bool hasPackets()
{
    devices::Cpu const& cpu = devices::Cpu::getDevice();
    return cpu.hasSSE() && cpu.getSSELevel() >= 65;
}

template <class T> WeightedSum<T> weightedSumOfProcessor()
{
    if (!hasPackets())
        return &weightedSumOfRows<T>;
    // This question also asks whether the system keeps the wider registers.
    return __builtin_cpu_supports("avx2") ? &weightedSumOfPackets<xsimd::avx2, T>
                                          : &weightedSumOfPackets<xsimd::sse4_1, T>;
}

template WeightedSum<float> weightedSumOfProcessor();
template WeightedSum<double> weightedSumOfProcessor();

} // namespace qel::linear_filtering
