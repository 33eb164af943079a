#pragma once

#include <cstddef>

namespace qel::analysis {

/// Lanewise extrema of `packets` packets of 16 bytes, folded into the packets at `minima` and `maxima`. All pointers
/// are aligned to 16 bytes. A NaN is passed over.
template <class Arch, class T> void extremaOfPackets(T const* row, std::size_t packets, T* minima, T* maxima);

} // namespace qel::analysis
