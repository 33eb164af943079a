#pragma once

#include "Core/private/Access/BorderCondition.h"
#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/VoxelTypeOf.h"
#include <boost/shared_ptr.hpp>

namespace qel::access {

// Outside a plan stands its reflection along a direction. Plans and series are not extended.
//
// A point beyond the line of that direction through a corner is reflected across that line, along its normal; any other
// point is reflected in the edge that it crossed, along the direction itself.
template <class T> class DirectionalMirrorBorderCondition final : public BorderCondition<T>
{
public:
    static boost::shared_ptr<BorderCondition<T>> New(double angle);

    void getData(ImageModel const* image, T* first, T* last, long col, long row, long plan, long timeSeries,
                 long spectralSeries) const override;

    // The point of the image whose voxel stands at (x, y).
    void computeCoord(ImageModel const* image, long x, long y, long& outX, long& outY) const;

private:
    explicit DirectionalMirrorBorderCondition(double angle);

    DirectionalMirror m_mirror;
};

#define QEL_EXTERN(T) extern template class DirectionalMirrorBorderCondition<T>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN)
#undef QEL_EXTERN

} // namespace qel::access
