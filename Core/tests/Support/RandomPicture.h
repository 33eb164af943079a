#pragma once

#include "Core/tests/Support/Picture.h"

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

namespace qel::test {

/// Values at which kernels break: the ends of the type and their neighbours, 0, 1, -1; for reals also fractions, ends
/// of the integer types, the smallest numbers and both zeros. With `nonFinite`, NaN and infinities too.
template <class T> std::vector<T> specialValues(bool nonFinite = false)
{
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>) {
        std::vector<T> values = {T(0),
                                 -T(0),
                                 T(1),
                                 T(-1),
                                 T(0.5),
                                 T(-0.5),
                                 T(1.5),
                                 T(-1.5),
                                 T(0.1),
                                 T(300.7),
                                 T(-300.7),
                                 T(127.5),
                                 T(128),
                                 T(-128.5),
                                 T(255.99),
                                 T(256),
                                 T(32767.5),
                                 T(32768),
                                 T(-32769),
                                 T(65535.5),
                                 T(65536),
                                 T(2147483520),
                                 T(2147483648),
                                 T(-2147483648),
                                 T(-2147483904),
                                 T(-3e9),
                                 T(4294967040),
                                 T(4294967296),
                                 T(1e10),
                                 T(9007199254740993),
                                 T(9223371487098961920),
                                 T(9223372036854775808.0),
                                 T(-9223372036854775808.0),
                                 T(-9.3e18),
                                 T(1.2e19),
                                 T(18446742974197923840.0),
                                 T(18446744073709551616.0),
                                 T(1e30),
                                 T(-1e30),
                                 Limits::max(),
                                 Limits::lowest(),
                                 Limits::min(),
                                 Limits::denorm_min(),
                                 -Limits::denorm_min(),
                                 std::nextafter(T(2147483648), T(0)),
                                 std::nextafter(T(-2147483648), T(-3e9)),
                                 std::nextafter(T(1), T(0))};
        if (nonFinite)
            values.insert(values.end(),
                          {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()});
        return values;
    } else {
        std::vector<T> values = {T(0),          T(1),
                                 T(2),          T(-1),
                                 T(-2),         Limits::max(),
                                 Limits::min(), T(127),
                                 T(128),        T(200),
                                 T(255),        T(Limits::max() - 1),
                                 T(-128),       T(Limits::max() / 2 + 1)};
        if constexpr (sizeof(T) > 1)
            values.insert(values.end(), {T(256), T(-256), T(32767), T(-32768), T(-32769)});
        if constexpr (sizeof(T) > 2)
            values.insert(values.end(), {T(65535), T(65536), T(16777217), T(-16777217), T(2147483647)});
        if constexpr (sizeof(T) > 4)
            values.insert(values.end(),
                          {T(2147483648), T(4294967295), T(4294967296), T(-2147483649), T(9007199254740993)});
        return values;
    }
}

/// Random voxels: one in four from `specialValues`, half of the rest small (so that values meet again), half from all
/// of the type (of reals: up to a million, with fractions). The same seed gives the same picture.
template <class T> Picture<T> randomPicture(Shape const& shape, unsigned seed, bool nonFinite = false)
{
    std::mt19937_64 random(seed);
    auto const special = specialValues<T>(nonFinite);
    Picture<T> picture(shape);
    for (T& voxel : picture.voxels) {
        unsigned long const bits = random();
        unsigned const kind = bits % 8;
        unsigned long const rest = bits >> 3;
        if (kind < 2)
            voxel = special[rest % special.size()];
        else if (kind < 5)
            voxel = std::is_signed_v<T> ? T(long(rest % 21) - 10) : T(rest % 21);
        else if constexpr (std::is_floating_point_v<T>)
            voxel = T((double(rest % 2000001) - 1000000.0) / (kind == 5 ? 7.0 : 1.0));
        else
            voxel = T(rest);
    }
    return picture;
}

/// Random voxels from `low` to `high`, both included; reals have fractions of eighths. For sums that must stay exact.
template <class T> Picture<T> randomPictureBetween(Shape const& shape, unsigned seed, T low, T high)
{
    std::mt19937_64 random(seed);
    Picture<T> picture(shape);
    for (T& voxel : picture.voxels) {
        if constexpr (std::is_floating_point_v<T>)
            voxel = T(low + T(random() % (static_cast<unsigned long>((high - low) * 8) + 1)) / T(8));
        else if constexpr (std::is_signed_v<T>)
            voxel = T(std::uniform_int_distribution<long>(low, high)(random));
        else
            voxel = T(std::uniform_int_distribution<unsigned long>(low, high)(random));
    }
    return picture;
}

} // namespace qel::test
