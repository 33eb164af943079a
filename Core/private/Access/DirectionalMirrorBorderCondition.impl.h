#pragma once

#include "Core/private/Access/DirectionalMirrorBorderCondition.h"
#include <algorithm>
#include <limits>

namespace qel::access {

template <class T>
DirectionalMirrorBorderCondition<T>::DirectionalMirrorBorderCondition(double angle)
    : m_mirror(angle)
{}

template <class T> boost::shared_ptr<BorderCondition<T>> DirectionalMirrorBorderCondition<T>::New(double angle)
{
    return boost::shared_ptr<BorderCondition<T>>(new DirectionalMirrorBorderCondition(angle));
}

template <class T>
void DirectionalMirrorBorderCondition<T>::computeCoord(ImageModel const* image, long x, long y, long& outX,
                                                       long& outY) const
{
    m_mirror.computeCoord(ImageSizes(*image), x, y, outX, outY);
}

template <class T>
void DirectionalMirrorBorderCondition<T>::getData(ImageModel const* image, T* first, T* last, long col, long row,
                                                  long plan, long timeSeries, long spectralSeries) const
{
    RowRequest request{last - first, col, row, plan, timeSeries, spectralSeries};
    if (readWhollyInside(*image, VoxelTypeOf<T>::value, reinterpret_cast<unsigned char*>(first), request))
        return;

    ImageSizes const sizes(*image);
    if (!ImageSizes::contains(sizes.spectralSeries, spectralSeries))
        throwNotCompatible("Directional mirror", "spectral series");
    if (!ImageSizes::contains(sizes.timeSeries, timeSeries))
        throwNotCompatible("Directional mirror", "time series");
    if (!ImageSizes::contains(sizes.plans, plan))
        throwNotCompatible("Directional mirror", "plans");
    if (request.count <= 0)
        return;
    if (sizes.isAnyZero())
        throwReadError();

    // Along such a row the reflected points lie anywhere in the plan, so they are read one by one.
    auto const readOneByOne = [&](T* begin, T* end) {
        RowRequest single = request;
        single.count = 1;
        for (T* voxel = begin; voxel != end; ++voxel) {
            long const offset = voxel - first;
            long x;
            if (__builtin_add_overflow(col, offset, &x))
                x = std::numeric_limits<long>::max();
            m_mirror.computeCoord(sizes, x, row, single.col, single.row);
            readRow(*image, reinterpret_cast<unsigned char*>(voxel), single);
        }
    };

    RowParts const parts(col, request.count, sizes.cols);
    if (parts.inside == 0 || !ImageSizes::contains(sizes.rows, row)) {
        readOneByOne(first, last);
        return;
    }
    T* const inside = first + parts.before;
    request.col = std::max(col, 0l);
    request.count = parts.inside;
    readRow(*image, reinterpret_cast<unsigned char*>(inside), request);
    readOneByOne(first, inside);
    readOneByOne(inside + parts.inside, last);
}

} // namespace qel::access
