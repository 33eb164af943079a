#pragma once

#include "Core/private/Access/BorderCondition.h"
#include "Core/private/VoxelTypeOf.h"
#include <boost/shared_ptr.hpp>

namespace qel::access {

// Outside the image stands its reflection, with the edge voxel repeated, again and again.
template <class T> class MirrorBorderCondition final : public BorderCondition<T>
{
public:
    static boost::shared_ptr<BorderCondition<T>> New();

    void getData(ImageModel const* image, T* first, T* last, long col, long row, long plan, long timeSeries,
                 long spectralSeries) const override;

    static long computeCoord(long x, long size);

private:
    MirrorBorderCondition() = default;
};

#define QEL_EXTERN(T) extern template class MirrorBorderCondition<T>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN)
#undef QEL_EXTERN

} // namespace qel::access
