#include "NonlinearFiltering/private/MedianFilter/MedianNetworkKernel.impl.h"

namespace qel::nonlinear_filtering {

QEL_NETWORK_KERNELS(, network_avx2)

} // namespace qel::nonlinear_filtering
