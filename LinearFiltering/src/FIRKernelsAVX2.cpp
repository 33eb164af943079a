#include "LinearFiltering/private/FIRPackets.h"

namespace qel::linear_filtering {

template void weightedSumOfPackets<xsimd::avx2>(float const* const*, float const*, std::size_t, float*, std::size_t);
template void weightedSumOfPackets<xsimd::avx2>(double const* const*, double const*, std::size_t, double*, std::size_t);

} // namespace qel::linear_filtering
