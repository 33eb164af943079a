#pragma once

#include "Core/private/Helper/convertVoxel.h"
#include "PointOperations/private/ArithmeticOperators.h"

#include <qel/point_operations/GradientMagnitudeOutputType.h>

#include <cmath>

/// What the magnitudes of gradients of two and three components share.
namespace qel::point_operations {

inline constexpr char const gradientMagnitudeOutputDeclaration[] =
    "GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN = 0, GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS";

template <GradientMagnitudeOutputType mode> struct GradientMagnitude;

template <> struct GradientMagnitude<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN>
{
    /// Squares and sums wrap in T. The root of a negative sum is a NaN, and is cast as such.
    template <class T, class... Components> static T of(T first, Components... others)
    {
        T sum = ArithmeticOperator_MultiplyTag::apply(first, first);
        ((sum = ArithmeticOperator_AddTag::apply(sum, ArithmeticOperator_MultiplyTag::apply(others, others))), ...);
        // Up to 16 bits a float has the same root after it is cut.
        if constexpr (sizeof(T) <= 2)
            return helper::convertVoxel<T>(std::sqrt(static_cast<float>(sum)));
        else if constexpr (std::is_integral_v<T>)
            return helper::convertVoxel<T>(std::sqrt(static_cast<double>(sum)));
        else
            return std::sqrt(sum);
    }
};

template <> struct GradientMagnitude<GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS>
{
    template <class T, class... Components> static T of(T first, Components... others)
    {
        ((first = ArithmeticOperator_MaximumTag::apply(first, others)), ...);
        return first;
    }
};

} // namespace qel::point_operations
