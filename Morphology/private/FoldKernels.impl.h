#pragma once

#include "Morphology/private/FoldKernels.h"

// One text for all instruction sets: GCC makes vectors of these loops. `Arch` keeps the instances of the units apart.

namespace qel::morphology::details {

/// The smaller of two values. The operands stand as the instruction wants them; no NaN gets here.
template <class Arch> struct ErosionFunctor
{
    template <class T> T operator()(T a, T b) const { return b < a ? b : a; }
};

/// The larger of two values.
template <class Arch> struct DilationFunctor
{
    template <class T> T operator()(T a, T b) const { return a < b ? b : a; }
};

template <class Arch, class Functor, class T, int N, bool First>
void foldSome(T const* const* taps, T* __restrict out, std::size_t count)
{
    T const* tap[N];
    for (int i = 0; i < N; ++i)
        tap[i] = taps[i];
    for (std::size_t x = 0; x < count; ++x) {
        T value = First ? tap[0][x] : out[x];
        for (int i = First ? 1 : 0; i < N; ++i)
            value = Functor()(value, tap[i][x]);
        out[x] = value;
    }
}

template <class Arch, class Functor, class T, bool First>
void foldUpToEight(T const* const* taps, std::size_t numOfTaps, T* out, std::size_t count)
{
    switch (numOfTaps) {
    case 1:
        return foldSome<Arch, Functor, T, 1, First>(taps, out, count);
    case 2:
        return foldSome<Arch, Functor, T, 2, First>(taps, out, count);
    case 3:
        return foldSome<Arch, Functor, T, 3, First>(taps, out, count);
    case 4:
        return foldSome<Arch, Functor, T, 4, First>(taps, out, count);
    case 5:
        return foldSome<Arch, Functor, T, 5, First>(taps, out, count);
    case 6:
        return foldSome<Arch, Functor, T, 6, First>(taps, out, count);
    case 7:
        return foldSome<Arch, Functor, T, 7, First>(taps, out, count);
    default:
        return foldSome<Arch, Functor, T, 8, First>(taps, out, count);
    }
}

template <class Arch, class Functor, class T>
void fold(T const* const* taps, std::size_t numOfTaps, T* out, std::size_t count)
{
    std::size_t const first = numOfTaps < 8 ? numOfTaps : 8;
    foldUpToEight<Arch, Functor, T, true>(taps, first, out, count);
    for (std::size_t done = first; done < numOfTaps;) {
        std::size_t const some = numOfTaps - done < 8 ? numOfTaps - done : 8;
        foldUpToEight<Arch, Functor, T, false>(taps + done, some, out, count);
        done += some;
    }
}

template <class Arch, class T> void clean(T* row, std::size_t count, T neutral)
{
    for (std::size_t x = 0; x < count; ++x)
        row[x] = row[x] == row[x] ? row[x] : neutral;
}

} // namespace qel::morphology::details

namespace qel::morphology {

template <class Arch, class T> FoldKernels<T> foldKernels(bool isErosion)
{
    FoldKernels<T> kernels{isErosion ? &details::fold<Arch, details::ErosionFunctor<Arch>, T>
                                     : &details::fold<Arch, details::DilationFunctor<Arch>, T>,
                           nullptr};
    if constexpr (static_cast<T>(0.5) != 0)
        kernels.clean = &details::clean<Arch, T>;
    return kernels;
}

} // namespace qel::morphology
