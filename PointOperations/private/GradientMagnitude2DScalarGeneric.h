#pragma once

#include "PointOperations/private/GradientMagnitude.h"

#include <cstddef>

namespace qel::point_operations {

template <GradientMagnitudeOutputType mode> struct GradientMagnitude2DScalarGeneric
{
    template <class T>
    static void row(T const* __restrict first, T const* __restrict second, T* __restrict out, std::size_t count)
    {
        for (std::size_t x = 0; x < count; ++x)
            out[x] = GradientMagnitude<mode>::of(first[x], second[x]);
    }
};

} // namespace qel::point_operations
