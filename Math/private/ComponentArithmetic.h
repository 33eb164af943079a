#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

namespace qel::math {

// The arithmetic of one component: integers wrap, and every conversion has one meaning.

/// The unsigned type in which an integer's arithmetic wraps; the type itself for a floating type.
template <class T, bool = std::is_integral_v<T>> struct Wrapping
{
    using type = std::make_unsigned_t<T>;
};
template <class T> struct Wrapping<T, false>
{
    using type = T;
};

template <class T> T added(T a, T b)
{
    using W = typename Wrapping<T>::type;
    return static_cast<T>(static_cast<W>(a) + static_cast<W>(b));
}

template <class T> T subtracted(T a, T b)
{
    using W = typename Wrapping<T>::type;
    return static_cast<T>(static_cast<W>(a) - static_cast<W>(b));
}

template <class T> T multiplied(T a, T b)
{
    using W = typename Wrapping<T>::type;
    return static_cast<T>(static_cast<W>(a) * static_cast<W>(b));
}

template <class T> T divided(T a, T b)
{
    if constexpr (std::is_signed_v<T> && std::is_integral_v<T>) {
        if (b == -1)
            return subtracted(T(0), a); // the lowest value has no opposite
    }
    return a / b;
}

/// A double as a component, cut towards 0. A value that does not fit, or NaN, counts as the smallest signed 64-bit
/// integer, of which the low bits are kept.
template <class T> T fromDouble(double value)
{
    if constexpr (std::is_integral_v<T>) {
        constexpr double twoTo63 = 9223372036854775808.0;
        if (std::is_same_v<T, unsigned long> && value >= twoTo63 && value < 2 * twoTo63)
            return static_cast<T>(static_cast<unsigned long>(value));
        bool const fits = value >= -twoTo63 && value < twoTo63;
        return static_cast<T>(fits ? static_cast<long>(value) : std::numeric_limits<long>::min());
    } else {
        return static_cast<T>(value);
    }
}

} // namespace qel::math
