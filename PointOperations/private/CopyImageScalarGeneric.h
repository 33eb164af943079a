#pragma once

#include <cstddef>
#include <cstring>

namespace qel::point_operations {

template <class T> struct CopyImageScalarGeneric
{
    void operator()(T const* in, T* out, std::size_t count) const { std::memcpy(out, in, count * sizeof(T)); }
};

} // namespace qel::point_operations
