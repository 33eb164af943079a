// The compiled form of views, rows and caches, for all voxel types.
#include "Core/private/Access/Rows.impl.h"
#include "Core/private/Access/View.impl.h"

#define QEL_INSTANTIATE(T)                                                                                             \
    template class qel::access::View<T>;                                                                               \
    QEL_ROW_TEMPLATES(, T, std::allocator)
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE
