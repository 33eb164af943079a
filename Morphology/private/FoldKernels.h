#pragma once

#include <cstddef>

namespace qel::morphology {

/// Row kernels of an extremum.
template <class T> struct FoldKernels
{
    /// out[x] = the extremum of taps[i][x] over all i. `out` overlaps no tap; there is at least one.
    void (*fold)(T const* const* taps, std::size_t numOfTaps, T* out, std::size_t count);
    /// Replaces each NaN by a value that never wins; null for integers.
    void (*clean)(T* row, std::size_t count, T neutral);
};

/// The kernels of an instruction set: arch_scalar_tag, or one of xsimd's.
template <class Arch, class T> FoldKernels<T> foldKernels(bool isErosion);

} // namespace qel::morphology
