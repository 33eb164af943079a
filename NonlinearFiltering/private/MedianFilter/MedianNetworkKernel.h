#pragma once

#include "NonlinearFiltering/private/MedianFilter/NetworkStep.h"

namespace qel::nonlinear_filtering {

/// Which instructions a kernel is compiled for. The results are the same.
struct network_baseline;
struct network_sse4_1;
struct network_avx2;

/// How many lanes a kernel takes at once: it computes whole multiples, and whoever calls leaves room behind each row.
template <class T> inline constexpr unsigned long networkPacket = 64 / sizeof(T);

/// Runs the steps on `lanes` lanes. A register is a row that overlaps no other one.
template <class Arch, class T>
void runNetwork(NetworkStep const* steps, unsigned long count, T* const* registers, unsigned long lanes);

/// The median of 3 x 3, in one pass over three rows: for the smallest window even the cache is far away. Exactly
/// `count` medians, the first one of the keys around place 0 of the rows.
template <class Arch, class T>
void medianOf9(T const* above, T const* here, T const* below, T* medians, unsigned long count);

} // namespace qel::nonlinear_filtering
