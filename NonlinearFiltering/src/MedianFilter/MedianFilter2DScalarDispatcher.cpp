#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarDispatcher.h"
#include "NonlinearFiltering/private/MedianFilter/runMedian.h"

namespace qel::nonlinear_filtering {

template <class T> void MedianFilter2DScalarDispatcher::run(MedianFilterScalarPrivate* median)
{
    runMedian<T, Filter2dTag>(*median);
}

#define QEL_INSTANTIATE(T) template void MedianFilter2DScalarDispatcher::run<T>(MedianFilterScalarPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::nonlinear_filtering
