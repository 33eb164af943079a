#include "Analysis/private/IntensityExtremaSSEKernel.h"

#include <xsimd/xsimd.hpp>

namespace qel::analysis {

template <class Arch, class T> void extremaOfPackets(T const* row, std::size_t packets, T* minima, T* maxima)
{
    using Packet = xsimd::batch<T, Arch>;
    Packet low = Packet::load_aligned(minima);
    Packet high = Packet::load_aligned(maxima);
    for (std::size_t packet = 0; packet < packets; ++packet) {
        Packet const voxels = Packet::load_aligned(row + packet * Packet::size);
        // The voxels stand first: the instruction gives its second operand where either is a NaN.
        low = xsimd::min(voxels, low);
        high = xsimd::max(voxels, high);
    }
    low.store_aligned(minima);
    high.store_aligned(maxima);
}

#define QEL_INSTANTIATE(T) template void extremaOfPackets<xsimd::sse4_1>(T const*, std::size_t, T*, T*);
QEL_INSTANTIATE(unsigned char)
QEL_INSTANTIATE(unsigned short)
QEL_INSTANTIATE(unsigned int)
QEL_INSTANTIATE(signed char)
QEL_INSTANTIATE(short)
QEL_INSTANTIATE(int)
QEL_INSTANTIATE(float)
QEL_INSTANTIATE(double)
#undef QEL_INSTANTIATE

} // namespace qel::analysis
