// The compiled form of the cursors on packets.
#include "Core/private/Access/IteratorNeighborhood.impl.h"
#include "Core/private/Access/IteratorPixel.impl.h"

#define QEL_INSTANTIATE(T)                                                                                             \
    QEL_PIXEL_ITERATOR_TEMPLATES(, qel::access::PacketView<T>, qel::access::packetSizeOf<T>)                           \
    QEL_NEIGHBORHOOD_TEMPLATES(, qel::access::PacketView<T>, qel::access::packetSizeOf<T>)
QEL_FOR_EACH_PACKET_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE
