#pragma once

#include <cstdint>
#include <type_traits>

namespace qel::helper {

/// The machine's conversion to a signed integer of 32 or 64 bits: towards zero, and the smallest value for whatever
/// does not fit. The choice comes before the cast, so that the cast is defined and vector code and its tail agree.
template <class Wide, class In> Wide truncateReal(In value)
{
    static_assert(std::is_same_v<Wide, std::int32_t> || std::is_same_v<Wide, std::int64_t>);
    constexpr In limit = sizeof(Wide) == 4 ? In(2147483648.0) : In(9223372036854775808.0);
    // NaN fails both comparisons. No short cut between them: that would be a branch in the loop.
    bool const fits = bool(int(value >= -limit) & int(value < limit));
    return static_cast<Wide>(fits ? value : -limit);
}

/// The one conversion between voxel types, in every path and form.
///
/// Integers keep their low bits. A real goes to a type of 8 or 16 bits and to signed 32 bits through the machine's
/// conversion to signed 32 bits (what does not fit, and NaN, become its smallest value), of which the low bits are
/// kept; to unsigned 32 and signed 64 bits in the same way through signed 64 bits; to unsigned 64 bits exactly where it
/// fits, and through signed 64 bits otherwise. So 300.7 is 44 in 8 bits, and -1.5 is 255 in unsigned 8 bits.
template <class Out, class In> Out convertVoxel(In value)
{
    if constexpr (std::is_same_v<Out, In> || !std::is_floating_point_v<In> || std::is_floating_point_v<Out>) {
        return static_cast<Out>(value);
    } else if constexpr (sizeof(Out) < 4 || (sizeof(Out) == 4 && std::is_signed_v<Out>)) {
        return static_cast<Out>(truncateReal<std::int32_t>(value));
    } else if constexpr (sizeof(Out) == 4 || std::is_signed_v<Out>) {
        return static_cast<Out>(truncateReal<std::int64_t>(value));
    } else {
        constexpr In half = In(9223372036854775808.0);
        bool const high = bool(int(value >= half) & int(value < 2 * half));
        // Exact: both lie within a factor of two of each other.
        In const lower = high ? value - half : value;
        return static_cast<Out>(truncateReal<std::int64_t>(lower)) + (Out(high) << 63);
    }
}

} // namespace qel::helper
