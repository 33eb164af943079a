// The same for rows of whole packets.
#include "Core/private/Access/Rows.impl.h"
#include "Core/private/Access/View.impl.h"

#define QEL_INSTANTIATE(T)                                                                                             \
    template class qel::access::View<T, qel::SimdVec::PacketAllocator<T>>;                                             \
    QEL_ROW_TEMPLATES(, T, qel::SimdVec::PacketAllocator)
QEL_FOR_EACH_PACKET_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE
