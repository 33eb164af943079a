#pragma once

#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Access/ContinueBorderCondition.h"
#include <algorithm>

namespace qel::access {

template <class T> boost::shared_ptr<BorderCondition<T>> ContinueBorderCondition<T>::New()
{
    return boost::shared_ptr<BorderCondition<T>>(new ContinueBorderCondition);
}

template <class T>
void ContinueBorderCondition<T>::getData(ImageModel const* image, T* first, T* last, long col, long row, long plan,
                                         long timeSeries, long spectralSeries) const
{
    RowRequest request{last - first, col, row, plan, timeSeries, spectralSeries};
    if (readWhollyInside(*image, VoxelTypeOf<T>::value, reinterpret_cast<unsigned char*>(first), request))
        return;

    ImageSizes const sizes(*image);
    if (!ImageSizes::contains(sizes.spectralSeries, spectralSeries))
        throwNotCompatible("Continue", "spectral series");
    if (request.count <= 0)
        return;
    if (sizes.isAnyZero())
        throwReadError();
    request.timeSeries = clampCoordinate(timeSeries, sizes.timeSeries);
    request.plan = clampCoordinate(plan, sizes.plans);
    request.row = clampCoordinate(row, sizes.rows);
    request.col = clampCoordinate(col, sizes.cols);

    RowParts const parts(col, request.count, sizes.cols);
    T* const inside = first + parts.before;
    if (parts.inside == 0) {
        T edge;
        request.count = 1;
        readRow(*image, reinterpret_cast<unsigned char*>(&edge), request);
        std::fill(first, last, edge);
        return;
    }
    request.count = parts.inside;
    readRow(*image, reinterpret_cast<unsigned char*>(inside), request);
    std::fill(first, inside, T(*inside));
    std::fill(inside + parts.inside, last, T(inside[parts.inside - 1]));
}

} // namespace qel::access
