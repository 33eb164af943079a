#pragma once

#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include <algorithm>

namespace qel::access {

template <class T>
FixedBorderCondition<T>::FixedBorderCondition(T value)
    : m_value(value)
{}

template <class T> boost::shared_ptr<BorderCondition<T>> FixedBorderCondition<T>::New(T value)
{
    return boost::shared_ptr<BorderCondition<T>>(new FixedBorderCondition(value));
}

template <class T>
void FixedBorderCondition<T>::getData(ImageModel const* image, T* first, T* last, long col, long row, long plan,
                                      long timeSeries, long spectralSeries) const
{
    RowRequest request{last - first, col, row, plan, timeSeries, spectralSeries};
    if (readWhollyInside(*image, VoxelTypeOf<T>::value, reinterpret_cast<unsigned char*>(first), request))
        return;

    ImageSizes const sizes(*image);
    if (!ImageSizes::contains(sizes.spectralSeries, spectralSeries))
        throwNotCompatible("Fixed", "spectral series");
    if (request.count <= 0)
        return;

    RowParts const parts(col, request.count, sizes.cols);
    if (parts.inside == 0 || !ImageSizes::contains(sizes.timeSeries, timeSeries) ||
        !ImageSizes::contains(sizes.plans, plan) || !ImageSizes::contains(sizes.rows, row)) {
        std::fill(first, last, m_value);
        return;
    }
    T* const inside = first + parts.before;
    std::fill(first, inside, m_value);
    request.col = std::max(col, 0l);
    request.count = parts.inside;
    readRow(*image, reinterpret_cast<unsigned char*>(inside), request);
    std::fill(inside + parts.inside, last, m_value);
}

} // namespace qel::access
