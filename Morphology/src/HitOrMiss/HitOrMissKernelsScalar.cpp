#include "Core/private/SimdVec.h"
#include "Morphology/private/HitOrMissKernels.impl.h"

#include <qel/devices/Cpu.h>

namespace xsimd {
struct sse4_1; // their kernels are compiled in units of their own
struct avx2;
} // namespace xsimd

namespace qel::morphology {

template <>
void details::ColumnMatcher<SimdVec::arch_scalar_tag>::run(unsigned char const* codes, unsigned char* matches,
                                                           long count, MatchBytes const& bytes)
{
    unsigned int left = codes[-1], centre = codes[0];
    for (long x = 0; x < count; ++x) {
        unsigned int const right = codes[x + 1];
        matches[x] = static_cast<unsigned char>(-(bytes[left | right << 3] >> centre & 1));
        left = centre;
        centre = right;
    }
}

template HitOrMissKernels<unsigned char> hitOrMissKernels<SimdVec::arch_scalar_tag, unsigned char>();
template HitOrMissKernels<unsigned short> hitOrMissKernels<SimdVec::arch_scalar_tag, unsigned short>();

template <class T> HitOrMissKernels<T> bestHitOrMissKernels()
{
    devices::Cpu const& cpu = devices::Cpu::getDevice();
    if (cpu.getAVXLevel() >= 2)
        return hitOrMissKernels<xsimd::avx2, T>();
    if (cpu.getSSELevel() >= 65)
        return hitOrMissKernels<xsimd::sse4_1, T>();
    return hitOrMissKernels<SimdVec::arch_scalar_tag, T>();
}

template HitOrMissKernels<unsigned char> bestHitOrMissKernels();
template HitOrMissKernels<unsigned short> bestHitOrMissKernels();

} // namespace qel::morphology
