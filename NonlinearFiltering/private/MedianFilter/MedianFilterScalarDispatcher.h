#pragma once

#include "Core/private/VoxelTypeOf.h"

namespace qel::nonlinear_filtering {

class MedianFilterScalarPrivate;

/// Body and frame for one voxel type.
struct MedianFilter2DScalarDispatcher
{
    template <class T> static void run(MedianFilterScalarPrivate* median);
};
struct MedianFilter3DScalarDispatcher
{
    template <class T> static void run(MedianFilterScalarPrivate* median);
};

#define QEL_EXTERN(T)                                                                                                  \
    extern template void MedianFilter2DScalarDispatcher::run<T>(MedianFilterScalarPrivate*);                           \
    extern template void MedianFilter3DScalarDispatcher::run<T>(MedianFilterScalarPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN)
#undef QEL_EXTERN

} // namespace qel::nonlinear_filtering
