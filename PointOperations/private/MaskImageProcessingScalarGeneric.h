#pragma once

#include <cstddef>

namespace qel::point_operations {

template <class T, class Mask> struct MaskImageProcessingScalarGeneric
{
    void operator()(T const* __restrict in, Mask const* __restrict mask, T* __restrict out, std::size_t count) const
    {
        for (std::size_t x = 0; x < count; ++x)
            out[x] = mask[x] != 0 ? in[x] : T(0);
    }
};

} // namespace qel::point_operations
