#include <qel/container/Vector.h>

#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

#include "Core/private/container/Vector.impl.h"

namespace qel::container {

template class Vector<double>;
template class Vector<unsigned long>;
template class Vector<unsigned int>;
template class Vector<unsigned char>;
template class Vector<long>;
template class Vector<int>;

#define QEL_VECTOR_OF(Point)                                                                                           \
    template class Vector<Point<int>>;                                                                                 \
    template class Vector<Point<unsigned int>>;                                                                        \
    template class Vector<Point<long>>;                                                                                \
    template class Vector<Point<unsigned long>>;                                                                       \
    template class Vector<Point<double>>;

QEL_VECTOR_OF(math::Vector2)
QEL_VECTOR_OF(math::Vector3)
QEL_VECTOR_OF(math::Vector4)

#undef QEL_VECTOR_OF

} // namespace qel::container
