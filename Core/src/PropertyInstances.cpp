// The property types that need no module beyond Core and Math.
#include "Core/private/Property.impl.h"

#include <qel/ImageModel.h>
#include <qel/Scalar.h>
#include <qel/ScalarArray.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

namespace qel {

template class QEL_API Property<bool>;
template class QEL_API Property<int>;
template class QEL_API Property<unsigned int>;
template class QEL_API Property<long>;
template class QEL_API Property<unsigned long>;
template class QEL_API Property<double>;
template class QEL_API Property<String>;
template class QEL_API Property<Scalar>;
template class QEL_API Property<ScalarArray>;

#define QEL_POINT_PROPERTIES(T)                                                                                        \
    template class QEL_API Property<math::Vector2<T>>;                                                                 \
    template class QEL_API Property<math::Vector3<T>>;                                                                 \
    template class QEL_API Property<math::Vector4<T>>;                                                                 \
    template class QEL_API Property<container::Vector<math::Vector2<T>>*>;                                             \
    template class QEL_API Property<container::Vector<math::Vector2<T>> const*>;                                       \
    template class QEL_API Property<container::Vector<math::Vector3<T>>*>;                                             \
    template class QEL_API Property<container::Vector<math::Vector3<T>> const*>;                                       \
    template class QEL_API Property<container::Vector<math::Vector4<T>>*>;                                             \
    template class QEL_API Property<container::Vector<math::Vector4<T>> const*>;
QEL_POINT_PROPERTIES(int)
QEL_POINT_PROPERTIES(unsigned int)
QEL_POINT_PROPERTIES(long)
QEL_POINT_PROPERTIES(unsigned long)
QEL_POINT_PROPERTIES(double)
#undef QEL_POINT_PROPERTIES

template class QEL_API Property<math::Matrix2<float>>;
template class QEL_API Property<math::Matrix2<double>>;
template class QEL_API Property<math::Matrix3<float>>;
template class QEL_API Property<math::Matrix3<double>>;

template class QEL_API Property<container::Vector<double>>;
template class QEL_API Property<container::Vector<int>>;
template class QEL_API Property<container::Vector<long>>;
template class QEL_API Property<container::Vector<unsigned char>>;
template class QEL_API Property<container::Vector<unsigned int>>;
template class QEL_API Property<container::Vector<unsigned long>>;
template class QEL_API Property<container::Vector<math::Vector2<int>>>;
template class QEL_API Property<container::Vector<math::Vector3<int>>>;

template class QEL_API Property<kernel::Kernel2D>;
template class QEL_API Property<kernel::Kernel3D>;

template class QEL_API Property<ImageModel const*>;
template class QEL_API Property<ImageModel*>;

} // namespace qel
