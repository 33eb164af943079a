#pragma once

#include "Core/private/Access/BorderCondition.h"
#include "Core/private/VoxelTypeOf.h"
#include <boost/shared_ptr.hpp>

namespace qel::access {

// Outside the image stands one value.
template <class T> class FixedBorderCondition final : public BorderCondition<T>
{
public:
    static boost::shared_ptr<BorderCondition<T>> New(T value);

    void getData(ImageModel const* image, T* first, T* last, long col, long row, long plan, long timeSeries,
                 long spectralSeries) const override;

private:
    explicit FixedBorderCondition(T value);

    T m_value;
};

#define QEL_EXTERN(T) extern template class FixedBorderCondition<T>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN)
#undef QEL_EXTERN

} // namespace qel::access
