#pragma once

#include <cstddef>
#include <type_traits>

namespace qel::point_operations {

/// A row kernel that is chosen at run time: frames then exist once for each voxel type, whatever the operator.
/// The operator works in `T`; rows of another type are cast in the loop.
template <class T, class In = T> using PairRow = void (*)(In const*, In const*, T*, std::size_t);

/// The same with one value as the second operand of all voxels.
template <class T, class In = T> struct ValueRow
{
    void (*row)(In const*, T, T*, std::size_t);
    T value;

    void operator()(In const* in, T* out, std::size_t count) const { row(in, value, out, count); }
};

/// Whether an operator gives the same bits for signed and for unsigned voxels: code for one of them is enough.
template <class Operator, class T, class In>
inline constexpr bool sharesUnsignedCode =
    Operator::ignoresSign&& std::is_same_v<T, In>&& std::is_integral_v<T>&& std::is_signed_v<T>;

/// In `T`; an operator may know better where the first operand is of a narrower type.
template <class T, class Operator, class First, class Second> T applyOperator(First first, Second second)
{
    if constexpr (!std::is_same_v<T, First> && requires { Operator::template applyToNarrow<T>(first, second); })
        return Operator::template applyToNarrow<T>(first, second);
    else
        return Operator::apply(static_cast<T>(first), static_cast<T>(second));
}

template <class Operator> struct PairOperation
{
    template <class T, class In = T>
    static void row(In const* __restrict first, In const* __restrict second, T* __restrict out, std::size_t count)
    {
        if constexpr (sharesUnsignedCode<Operator, T, In>) {
            using Bits = std::make_unsigned_t<T>;
            row<Bits>(reinterpret_cast<Bits const*>(first), reinterpret_cast<Bits const*>(second),
                      reinterpret_cast<Bits*>(out), count);
        } else {
            for (std::size_t x = 0; x < count; ++x)
                out[x] = applyOperator<T, Operator>(first[x], second[x]);
        }
    }
};

template <class Operator> struct ValueOperation
{
    template <class T, class In = T>
    static void row(In const* __restrict in, T value, T* __restrict out, std::size_t count)
    {
        if constexpr (sharesUnsignedCode<Operator, T, In>) {
            using Bits = std::make_unsigned_t<T>;
            row<Bits>(reinterpret_cast<Bits const*>(in), static_cast<Bits>(value), reinterpret_cast<Bits*>(out), count);
        } else {
            for (std::size_t x = 0; x < count; ++x)
                out[x] = applyOperator<T, Operator>(in[x], value);
        }
    }
};

} // namespace qel::point_operations
