#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace qel::segmentation {

/// A voxel is in the band unless it is below the low or above the high level: so a NaN is in.
///
/// The levels are doubles. Where every voxel converts to double exactly, they are brought to the voxel's type once,
/// with the same decision for each voxel, and the loop compares narrow vectors. 64-bit integers are compared as
/// doubles.
template <class T> class ThresholdScalarGeneric
{
public:
    ThresholdScalarGeneric(double low, double high)
    {
        if constexpr (std::is_floating_point_v<Level>) {
            m_low = nearest(low, std::numeric_limits<Level>::infinity());
            m_high = nearest(high, -std::numeric_limits<Level>::infinity());
        } else if (low > greatest || high < least) {
            // No voxel gets there.
            m_low = std::numeric_limits<Level>::max();
            m_high = std::numeric_limits<Level>::min();
        } else {
            // Negated, for a level that is a NaN excludes nothing.
            m_low = !(low > least) ? std::numeric_limits<Level>::min() : static_cast<Level>(std::ceil(low));
            m_high = !(high < greatest) ? std::numeric_limits<Level>::max() : static_cast<Level>(std::floor(high));
        }
    }

    void operator()(T const* __restrict in, unsigned char* __restrict out, std::size_t count) const
    {
        Level const low = m_low;
        Level const high = m_high;
        for (std::size_t x = 0; x < count; ++x) {
            Level const voxel = static_cast<Level>(in[x]);
            out[x] = !(voxel < low) & !(voxel > high);
        }
    }

private:
    using Level = std::conditional_t<std::is_integral_v<T> && sizeof(T) == 8, double, T>;
    static constexpr double least = static_cast<double>(std::numeric_limits<Level>::lowest());
    static constexpr double greatest = static_cast<double>(std::numeric_limits<Level>::max());

    /// The nearest value of the type that is not on the other side of the level; a NaN stays one.
    static Level nearest(double level, Level direction)
    {
        Level const rounded = static_cast<Level>(level);
        bool const isShort =
            direction > 0 ? static_cast<double>(rounded) < level : static_cast<double>(rounded) > level;
        return isShort ? std::nextafter(rounded, direction) : rounded;
    }

    Level m_low;
    Level m_high;
};

} // namespace qel::segmentation
