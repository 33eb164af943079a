#pragma once

#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include <algorithm>
#include <memory>

namespace qel::access {

template <class T> boost::shared_ptr<BorderCondition<T>> MirrorBorderCondition<T>::New()
{
    return boost::shared_ptr<BorderCondition<T>>(new MirrorBorderCondition);
}

template <class T> long MirrorBorderCondition<T>::computeCoord(long x, long size) { return mirrorCoordinate(x, size); }

template <class T>
void MirrorBorderCondition<T>::getData(ImageModel const* image, T* first, T* last, long col, long row, long plan,
                                       long timeSeries, long spectralSeries) const
{
    RowRequest request{last - first, col, row, plan, timeSeries, spectralSeries};
    if (readWhollyInside(*image, VoxelTypeOf<T>::value, reinterpret_cast<unsigned char*>(first), request))
        return;

    ImageSizes const sizes(*image);
    if (!ImageSizes::contains(sizes.spectralSeries, spectralSeries))
        throwNotCompatible("Mirror", "spectral series");
    if (request.count <= 0)
        return;
    if (sizes.isAnyZero())
        throwReadError();
    request.timeSeries = computeCoord(timeSeries, sizes.timeSeries);
    request.plan = computeCoord(plan, sizes.plans);
    request.row = computeCoord(row, sizes.rows);

    RowParts const parts(col, request.count, sizes.cols);
    if (parts.inside > parts.before && parts.inside > parts.after) {
        // One reflection on each side, of voxels that are in the buffer already.
        T* const inside = first + parts.before;
        T* const end = inside + parts.inside;
        request.col = std::max(col, 0l);
        request.count = parts.inside;
        readRow(*image, reinterpret_cast<unsigned char*>(inside), request);
        std::reverse_copy(inside, inside + parts.before, first);
        std::reverse_copy(end - parts.after, end, end);
        return;
    }

    // Read all columns that take part, once, then lay them out run by run. The second run goes from edge to edge, so
    // the first two tell which columns these are.
    long lowest = sizes.cols;
    long highest = -1;
    MirrorWalk scout(col, sizes.cols);
    long left = request.count;
    for (int turns = 0; turns < 2 && left > 0; ++turns) {
        MirrorWalk::Run const run = scout.next(left);
        lowest = std::min(lowest, run.firstCol);
        highest = std::max(highest, run.firstCol + run.count - 1);
        left -= run.count;
    }
    long count = request.count;
    request.col = lowest;
    request.count = highest - lowest + 1;
    std::unique_ptr<T[]> const voxels(new T[static_cast<unsigned long>(request.count)]);
    readRow(*image, reinterpret_cast<unsigned char*>(voxels.get()), request);

    MirrorWalk walk(col, sizes.cols);
    while (count > 0) {
        MirrorWalk::Run const run = walk.next(count);
        T const* const source = voxels.get() + (run.firstCol - lowest);
        first = run.ascending ? std::copy_n(source, run.count, first)
                              : std::reverse_copy(source, source + run.count, first);
        count -= run.count;
    }
}

} // namespace qel::access
