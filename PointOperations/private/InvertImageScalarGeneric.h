#pragma once

#include <cstddef>

namespace qel::point_operations {

/// The complement of the bits that `mask` keeps.
template <class T> struct InvertImageScalarGeneric
{
    T mask;

    void operator()(T const* __restrict in, T* __restrict out, std::size_t count) const
    {
        T const kept = mask;
        for (std::size_t x = 0; x < count; ++x)
            out[x] = static_cast<T>(~in[x] & kept);
    }
};

} // namespace qel::point_operations
