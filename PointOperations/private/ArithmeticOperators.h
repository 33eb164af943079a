#pragma once

#include "Core/private/Rules/TypePromotion.h"
#include "Core/private/Throw.h"
#include "PointOperations/private/OperatorRows.h"

#include <qel/Exception.h>
#include <qel/point_operations/ArithmeticOperatorType.h>

#include <bit>
#include <type_traits>

namespace qel::point_operations {

inline constexpr char const arithmeticOperatorDeclaration[] =
    "ARITHMETIC_ADD = 0, ARITHMETIC_SUBTRACT, ARITHMETIC_MULTIPLY, ARITHMETIC_DIVIDE, ARITHMETIC_MINIMUM, "
    "ARITHMETIC_MAXIMUM";

/// How an operator chooses the voxel type of its output.
inline rules::PromotionMode promotionModeOf(int arithmeticOperator)
{
    switch (arithmeticOperator) {
    case ARITHMETIC_ADD:
    case ARITHMETIC_SUBTRACT:
    case ARITHMETIC_DIVIDE:
        return rules::PROMOTION_ADD;
    case ARITHMETIC_MULTIPLY:
        return rules::PROMOTION_MULTIPLY;
    case ARITHMETIC_MINIMUM:
        return rules::PROMOTION_MINIMUM;
    case ARITHMETIC_MAXIMUM:
        return rules::PROMOTION_MAXIMUM;
    default:
        QEL_THROW(InvalidCall, "The provided arithmeticOperator is unknow (value=" << arithmeticOperator << ").");
    }
}

namespace detail {

// Integers wrap: sums and products are those of unsigned words, at least 32 bits wide, so that no product of narrow
// voxels becomes a signed one.
template <class T, class Compute> T wrapped(T first, T second, Compute const& compute)
{
    if constexpr (std::is_floating_point_v<T>) {
        return compute(first, second);
    } else {
        using Word = std::conditional_t<sizeof(T) == 8, unsigned long, unsigned int>;
        return static_cast<T>(compute(static_cast<Word>(first), static_cast<Word>(second)));
    }
}

/// The result, or 0 where the divisor is 0. A choice between the two would become a branch around the division, and
/// keep vectors out: so the bits are masked.
template <class T> T orZero(T result, bool isKept)
{
    using Bits = std::conditional_t<sizeof(T) == 8, unsigned long, unsigned int>;
    if constexpr (std::is_floating_point_v<T>)
        return std::bit_cast<T>(static_cast<Bits>(std::bit_cast<Bits>(result) & -static_cast<Bits>(isKept)));
    else
        return static_cast<T>(static_cast<Bits>(result) & -static_cast<Bits>(isKept));
}

/// Of a dividend of up to 16 bits: exact in float for any divisor. By one from 2^24 on, which a float may not hold, it
/// is 0 anyway; so it is by 0, which becomes such a divisor.
template <class T> T quotientOfNarrow(int dividend, int divisor)
{
    int const safe = divisor | (-int(divisor == 0) & (1 << 24));
    return static_cast<T>(static_cast<int>(static_cast<float>(dividend) / static_cast<float>(safe)));
}

// The processor divides no vectors of integers: quotients of up to 16 bits are exact in float, and of 32 bits in
// double, after they are cut. No rule makes an unsigned image of 32 bits of a quotient.
template <class T> T quotientOf(T dividend, T divisor)
{
    bool const isKept = divisor != T(0);
    if constexpr (std::is_floating_point_v<T>) {
        return orZero(dividend / divisor, isKept);
    } else if constexpr (sizeof(T) <= 2) {
        return quotientOfNarrow<T>(dividend, divisor);
    } else if constexpr (std::is_same_v<T, int>) {
        // The smallest integer by -1 would not fit: by 1 it does, and then the sign is turned.
        bool const isMinusOne = divisor == -1;
        int const safe = (divisor | int(!isKept)) + 2 * int(isMinusOne);
        unsigned int const cut =
            static_cast<unsigned int>(static_cast<int>(static_cast<double>(dividend) / static_cast<double>(safe)));
        unsigned int const turn = -static_cast<unsigned int>(isMinusOne);
        return orZero(static_cast<int>((cut ^ turn) - turn), isKept);
    } else {
        if (divisor == 0)
            return 0;
        if constexpr (std::is_signed_v<T>)
            if (divisor == -1)
                return static_cast<T>(0ul - static_cast<unsigned long>(dividend));
        return dividend / divisor;
    }
}

} // namespace detail

struct ArithmeticOperator_AddTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second)
    {
        return detail::wrapped(first, second, [](auto a, auto b) { return a + b; });
    }
};

struct ArithmeticOperator_SubtractTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second)
    {
        return detail::wrapped(first, second, [](auto a, auto b) { return a - b; });
    }
};

struct ArithmeticOperator_MultiplyTag
{
    static constexpr bool ignoresSign = true;
    template <class T> static T apply(T first, T second)
    {
        return detail::wrapped(first, second, [](auto a, auto b) { return a * b; });
    }
};

struct ArithmeticOperator_DivideTag
{
    static constexpr bool ignoresSign = false;
    template <class T> static T apply(T first, T second) { return detail::quotientOf(first, second); }
    template <class T> static T applyToNarrow(int first, int second)
    {
        return detail::quotientOfNarrow<T>(first, second);
    }
};

struct ArithmeticOperator_MinimumTag
{
    static constexpr bool ignoresSign = false;
    template <class T> static T apply(T first, T second) { return second < first ? second : first; }
};

struct ArithmeticOperator_MaximumTag
{
    static constexpr bool ignoresSign = false;
    template <class T> static T apply(T first, T second) { return first < second ? second : first; }
};

/// Pictures of 8 and 16 bits, which promotion widens, are cast in the loop and not on their way: that takes two thirds
/// of the time. This is the type of such inputs, or void.
template <class T, class Operator> struct NarrowInput
{
    static constexpr bool isProduct = std::is_same_v<Operator, ArithmeticOperator_MultiplyTag>;
    static constexpr bool isChoice = std::is_same_v<Operator, ArithmeticOperator_MinimumTag> ||
                                     std::is_same_v<Operator, ArithmeticOperator_MaximumTag>;
    static constexpr bool isByte = isProduct ? std::is_same_v<T, unsigned short> : std::is_same_v<T, short>;
    using Type = std::conditional_t<
        isChoice, void,
        std::conditional_t<isByte, unsigned char, std::conditional_t<std::is_same_v<T, int>, unsigned short, void>>>;
};

/// Calls `visit` with the tag of the operator, which is one of the six.
template <class Visit> void visitArithmeticOperator(int arithmeticOperator, Visit const& visit)
{
    switch (arithmeticOperator) {
    case ARITHMETIC_ADD:
        return visit(ArithmeticOperator_AddTag());
    case ARITHMETIC_SUBTRACT:
        return visit(ArithmeticOperator_SubtractTag());
    case ARITHMETIC_MULTIPLY:
        return visit(ArithmeticOperator_MultiplyTag());
    case ARITHMETIC_DIVIDE:
        return visit(ArithmeticOperator_DivideTag());
    case ARITHMETIC_MINIMUM:
        return visit(ArithmeticOperator_MinimumTag());
    case ARITHMETIC_MAXIMUM:
        return visit(ArithmeticOperator_MaximumTag());
    }
}

template <class Operator> using ArithmeticImageProcessingScalarGeneric = PairOperation<Operator>;
template <class Operator> using ArithmeticValueProcessingScalarGeneric = ValueOperation<Operator>;

} // namespace qel::point_operations
