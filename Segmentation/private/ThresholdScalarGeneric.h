#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace qel::segmentation {

/// A voxel is in the band unless, as a double, it is below the low or above the high level: so a NaN is in, and a level
/// that is a NaN excludes nothing.
///
/// The levels are brought to the voxel's type once, with the same decision for each voxel, and the loop compares narrow
/// vectors. Of reals there are two comparisons a voxel, of integers one.
template <class T, bool isReal = std::is_floating_point_v<T>> class ThresholdScalarGeneric
{
    using Bits = std::make_unsigned_t<T>;

public:
    ThresholdScalarGeneric(double low, double high)
    {
        Step const start = firstFor([low](double voxel) { return !(low > voxel); });
        Step const end = firstFor([high](double voxel) { return voxel > high; });
        if (!start.exists || (end.exists && end.offset <= start.offset))
            return;
        Bits const last = end.exists ? static_cast<Bits>(end.offset - 1) : std::numeric_limits<Bits>::max();
        m_hasBand = true;
        m_first = static_cast<Bits>(voxelAt(start.offset));
        m_span = static_cast<Bits>(last - start.offset);
    }

    void operator()(T const* __restrict in, unsigned char* __restrict out, std::size_t count) const
    {
        Bits const first = m_first;
        Bits const span = m_span;
        if (!m_hasBand) {
            std::fill_n(out, count, static_cast<unsigned char>(0));
            return;
        }
        for (std::size_t x = 0; x < count; ++x) {
            // What lies before the band wraps to a great distance.
            Bits const distance = static_cast<Bits>(static_cast<Bits>(in[x]) - first);
            out[x] = distance <= span;
        }
    }

private:
    /// Where a test turns from false to true, counted from the smallest value of the type.
    struct Step
    {
        bool exists;
        Bits offset;
    };

    static T voxelAt(Bits offset) { return static_cast<T>(static_cast<Bits>(std::numeric_limits<T>::min()) + offset); }

    /// By halving: the cast to double keeps the order of integers, also where it rounds.
    template <class Test> static Step firstFor(Test const& holds)
    {
        Bits begin = 0;
        Bits end = std::numeric_limits<Bits>::max();
        if (!holds(static_cast<double>(voxelAt(end))))
            return {false, 0};
        while (begin < end) {
            Bits const middle = static_cast<Bits>(begin + (end - begin) / 2);
            if (holds(static_cast<double>(voxelAt(middle))))
                end = middle;
            else
                begin = static_cast<Bits>(middle + 1);
        }
        return {true, begin};
    }

    Bits m_first = 0;
    Bits m_span = 0;
    bool m_hasBand = false;
};

template <class T> class ThresholdScalarGeneric<T, true>
{
public:
    ThresholdScalarGeneric(double low, double high)
        : m_low(nearest(low, std::numeric_limits<T>::infinity()))
        , m_high(nearest(high, -std::numeric_limits<T>::infinity()))
    {}

    void operator()(T const* __restrict in, unsigned char* __restrict out, std::size_t count) const
    {
        T const low = m_low;
        T const high = m_high;
        auto const isIn = [low, high](T voxel) { return bool(int(!(voxel < low)) & int(!(voxel > high))); };
        std::size_t x = 0;
        if constexpr (sizeof(T) == 8) {
            // Doubles become no vector of bytes in one step of the compiler's.
            constexpr std::size_t chunk = 64;
            T answers[chunk];
            for (; x + chunk <= count; x += chunk) {
                for (std::size_t i = 0; i < chunk; ++i)
                    answers[i] = isIn(in[x + i]) ? T(1) : T(0);
                for (std::size_t i = 0; i < chunk; ++i)
                    out[x + i] = static_cast<unsigned char>(static_cast<int>(answers[i]));
            }
        }
        for (; x < count; ++x)
            out[x] = isIn(in[x]);
    }

private:
    /// The nearest value of the type that is not on the other side of the level; a NaN stays one.
    static T nearest(double level, T direction)
    {
        T const rounded = static_cast<T>(level);
        bool const isShort =
            direction > 0 ? static_cast<double>(rounded) < level : static_cast<double>(rounded) > level;
        return isShort ? std::nextafter(rounded, direction) : rounded;
    }

    T m_low;
    T m_high;
};

} // namespace qel::segmentation
