#include "NonlinearFiltering/private/MedianFilter/MedianNetworkKernel.h"
#include "NonlinearFiltering/private/MedianFilter/RowNetworkToMedian.h"

#include <qel/devices/Cpu.h>

namespace qel::nonlinear_filtering {

template <class Key> NetworkKernels<Key> networkKernels()
{
    devices::Cpu const& cpu = devices::Cpu::getDevice();
    if (cpu.getAVXLevel() >= 2)
        return {runNetwork<network_avx2, Key>, medianOf9<network_avx2, Key>};
    if (cpu.getSSELevel() >= 65)
        return {runNetwork<network_sse4_1, Key>, medianOf9<network_sse4_1, Key>};
    return {runNetwork<network_baseline, Key>, medianOf9<network_baseline, Key>};
}

#define QEL_INSTANTIATE(T) template NetworkKernels<T> networkKernels<T>();
QEL_INSTANTIATE(unsigned char)
QEL_INSTANTIATE(unsigned short)
QEL_INSTANTIATE(unsigned int)
QEL_INSTANTIATE(unsigned long)
QEL_INSTANTIATE(signed char)
QEL_INSTANTIATE(short)
QEL_INSTANTIATE(int)
QEL_INSTANTIATE(long)
#undef QEL_INSTANTIATE

} // namespace qel::nonlinear_filtering
