#pragma once

#include <cstddef>
#include <type_traits>

namespace qel::point_operations {

/// The voxel is read whatever the mask says: a load under a condition would keep vectors out.
template <class T, class Mask> struct MaskImageProcessingScalarGeneric
{
    void operator()(T const* __restrict in, Mask const* __restrict mask, T* __restrict out, std::size_t count) const
    {
        for (std::size_t x = 0; x < count; ++x) {
            T const voxel = in[x];
            if constexpr (std::is_integral_v<T>)
                out[x] = static_cast<T>(voxel & -static_cast<T>(mask[x] != 0));
            else
                out[x] = mask[x] != 0 ? voxel : T(0);
        }
    }
};

} // namespace qel::point_operations
