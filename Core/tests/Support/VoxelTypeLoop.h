#pragma once

#include "Core/private/VoxelTypeOf.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace qel::test {

/// "uint8" and so on.
template <class T> char const* voxelTypeName()
{
    static constexpr char const* names[] = {"uint8", "uint16", "uint32", "uint64",  "int8",
                                            "int16", "int32",  "int64",  "float32", "float64"};
    return names[VoxelTypeOf<T>::value];
}

/// Calls a lambda `[]<class T>() {...}` for the ten scalar voxel types; a failure inside names the type.
template <class Callable> void forEachVoxelType(Callable&& callable)
{
#define QEL_CALL(T)                                                                                                    \
    {                                                                                                                  \
        SCOPED_TRACE(voxelTypeName<T>());                                                                              \
        callable.template operator()<T>();                                                                             \
    }
    QEL_FOR_EACH_VOXEL_TYPE(QEL_CALL)
#undef QEL_CALL
}

/// The same for the integer types alone.
template <class Callable> void forEachIntegerType(Callable&& callable)
{
    forEachVoxelType([&]<class T>() {
        if constexpr (std::is_integral_v<T>)
            callable.template operator()<T>();
    });
}

/// Calls a lambda `[]<class A, class B>() {...}` for all hundred ordered pairs of types.
template <class Callable> void forEachVoxelTypePair(Callable&& callable)
{
    forEachVoxelType([&]<class A>() { forEachVoxelType([&]<class B>() { callable.template operator()<A, B>(); }); });
}

} // namespace qel::test
