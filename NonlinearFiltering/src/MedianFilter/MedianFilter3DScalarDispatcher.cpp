#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarDispatcher.h"
#include "NonlinearFiltering/private/MedianFilter/runMedian.h"

namespace qel::nonlinear_filtering {

template <class T> void MedianFilter3DScalarDispatcher::run(MedianFilterScalarPrivate* median)
{
    runMedian<T, Filter3dTag>(*median);
}

#define QEL_INSTANTIATE(T) template void MedianFilter3DScalarDispatcher::run<T>(MedianFilterScalarPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::nonlinear_filtering
