#pragma once

#include <bit>
#include <type_traits>

namespace qel::nonlinear_filtering {

/// Integers in the order of the voxels: what medians are computed on.
///
/// An integer is its own key. A real number has the bits of its magnitude, turned round where it is negative; so -0
/// comes before +0. NaN has no place in the order of reals, and a selection over it would be undefined: it comes after
/// all of them, without its sign.
template <class T, bool isReal = std::is_floating_point_v<T>> struct MedianKey
{
    using Type = T;
    static Type of(T voxel) { return voxel; }
    static T voxelOf(Type key) { return key; }
};

template <class T> struct MedianKey<T, true>
{
    using Type = std::conditional_t<sizeof(T) == 4, int, long>;
    static Type of(T voxel)
    {
        Type const bits = std::bit_cast<Type>(voxel);
        Type const magnitude = bits & allButSign;
        bool const isNegative = (bits < 0) & (magnitude <= infinity);
        return isNegative ? static_cast<Type>(~magnitude) : magnitude;
    }
    static T voxelOf(Type key) { return std::bit_cast<T>(key < 0 ? ~key | signBit : key); }

private:
    static constexpr Type signBit = static_cast<Type>(Type(1) << (8 * sizeof(T) - 2)) * -2;
    static constexpr Type allButSign = ~signBit;
    static constexpr Type infinity =
        sizeof(T) == 4 ? static_cast<Type>(0x7f800000) : static_cast<Type>(0x7ff0000000000000);
};

/// How the rows of a run become keys: in the order of their voxel type, with as many bits.
template <class T> struct NativeKeys
{
    using Key = typename MedianKey<T>::Type;
    static constexpr bool areVoxels = std::is_same_v<T, Key>;
    Key keyOf(T voxel) const { return MedianKey<T>::of(voxel); }
    T voxelOf(Key key) const { return MedianKey<T>::voxelOf(key); }
};

/// By 8 bits, where the range of the image leaves no more: narrow rows are fast rows.
template <class T> struct ByteKeys
{
    using Key = unsigned char;
    static constexpr bool areVoxels = false;
    T minimum;
    // Modulo the type's range, which the difference of two of its values may leave.
    Key keyOf(T voxel) const
    {
        return static_cast<Key>(static_cast<unsigned long>(voxel) - static_cast<unsigned long>(minimum));
    }
    T voxelOf(Key key) const { return static_cast<T>(static_cast<unsigned long>(minimum) + key); }
};

} // namespace qel::nonlinear_filtering
