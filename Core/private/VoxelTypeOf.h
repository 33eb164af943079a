#pragma once

#include <qel/VoxelTypes.h>

/// Calls X(type) for the C++ type of each of the ten scalar voxel types, in the order of VoxelTypes.
#define QEL_FOR_EACH_VOXEL_TYPE(X)                                                                                     \
    X(unsigned char)                                                                                                   \
    X(unsigned short)                                                                                                  \
    X(unsigned int)                                                                                                    \
    X(unsigned long)                                                                                                   \
    X(signed char)                                                                                                     \
    X(short)                                                                                                           \
    X(int)                                                                                                             \
    X(long)                                                                                                            \
    X(float)                                                                                                           \
    X(double)

namespace qel {

/// The voxel type of a C++ type: `VoxelTypeOf<short>::value` is QEL_INT16.
template <class T> struct VoxelTypeOf;

template <> struct VoxelTypeOf<unsigned char>
{
    static constexpr VoxelTypes value = QEL_UINT8;
};
template <> struct VoxelTypeOf<unsigned short>
{
    static constexpr VoxelTypes value = QEL_UINT16;
};
template <> struct VoxelTypeOf<unsigned int>
{
    static constexpr VoxelTypes value = QEL_UINT32;
};
template <> struct VoxelTypeOf<unsigned long>
{
    static constexpr VoxelTypes value = QEL_UINT64;
};
template <> struct VoxelTypeOf<signed char>
{
    static constexpr VoxelTypes value = QEL_INT8;
};
template <> struct VoxelTypeOf<short>
{
    static constexpr VoxelTypes value = QEL_INT16;
};
template <> struct VoxelTypeOf<int>
{
    static constexpr VoxelTypes value = QEL_INT32;
};
template <> struct VoxelTypeOf<long>
{
    static constexpr VoxelTypes value = QEL_INT64;
};
template <> struct VoxelTypeOf<float>
{
    static constexpr VoxelTypes value = QEL_FLOAT32;
};
template <> struct VoxelTypeOf<double>
{
    static constexpr VoxelTypes value = QEL_FLOAT64;
};

} // namespace qel
