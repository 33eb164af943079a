#pragma once

#include <qel/segmentation/ThresholdByCriterion.h>

#include <cstddef>

namespace qel::segmentation {

template <CriterionType Criterion, class T> constexpr bool fulfils(T voxel, T value)
{
    if constexpr (Criterion == LESS_THAN)
        return voxel < value;
    else if constexpr (Criterion == LESS_THAN_OR_EQUAL_TO)
        return voxel <= value;
    else if constexpr (Criterion == EQUAL_TO)
        return voxel == value;
    else if constexpr (Criterion == GREATER_THAN_OR_EQUAL_TO)
        return voxel >= value;
    else if constexpr (Criterion == GREATER_THAN)
        return voxel > value;
    else
        return voxel != value;
}

template <CriterionType Criterion, class T>
void compareRow(T const* __restrict in, T value, unsigned char* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = fulfils<Criterion, T>(in[x], value);
}

/// The operator is chosen once, as a row kernel.
template <class T> struct ThresholdByCriterionScalarGeneric
{
    void (*kernel)(T const*, T, unsigned char*, std::size_t);
    T value;

    void operator()(T const* in, unsigned char* out, std::size_t count) const { kernel(in, value, out, count); }
};

} // namespace qel::segmentation
