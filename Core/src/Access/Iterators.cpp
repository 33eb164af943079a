// The compiled form of the cursors on single voxels.
#include "Core/private/Access/IteratorHalfNeighborhood.impl.h"
#include "Core/private/Access/IteratorNeighborhood.impl.h"
#include "Core/private/Access/IteratorPixel.impl.h"
#include "Core/private/Access/IteratorSeries.impl.h"

#define QEL_INSTANTIATE(T)                                                                                             \
    QEL_PIXEL_ITERATOR_TEMPLATES(, qel::access::View<T>, 1)                                                            \
    QEL_NEIGHBORHOOD_TEMPLATES(, qel::access::View<T>, 1)                                                              \
    QEL_HALF_NEIGHBORHOOD_TEMPLATES(, qel::access::View<T>, 1)                                                         \
    QEL_SERIES_ITERATOR_TEMPLATES(, qel::access::View<T>, 1)                                                           \
    template class qel::access::IteratorNeighborhood2D_Square4ByBlock<qel::access::View<T>>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE
