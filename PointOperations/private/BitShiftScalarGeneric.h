#pragma once

#include <cstddef>
#include <type_traits>

namespace qel::point_operations {

struct BitShiftOperator_RightTag
{};
struct BitShiftOperator_LeftTag
{};

template <class T, class Operator> struct BitShiftScalarGeneric
{
    /// Narrow voxels shift as 32 bits, as the processor does: a count beyond the voxel's width pushes all bits out.
    using Word = std::conditional_t<sizeof(T) == 8, T, std::conditional_t<std::is_signed_v<T>, int, unsigned int>>;
    static constexpr unsigned int countMask = sizeof(T) == 8 ? 63 : 31;

    unsigned int shiftCount;

    void operator()(T const* __restrict in, T* __restrict out, std::size_t count) const
    {
        unsigned int const shift = shiftCount & countMask;
        for (std::size_t x = 0; x < count; ++x) {
            Word const word = in[x];
            if constexpr (std::is_same_v<Operator, BitShiftOperator_RightTag>)
                out[x] = static_cast<T>(word >> shift);
            else
                out[x] = static_cast<T>(static_cast<std::make_unsigned_t<Word>>(word) << shift);
        }
    }
};

} // namespace qel::point_operations
