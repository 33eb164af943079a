#include <qel/math/Matrix3.h>

#include <algorithm>
#include <iterator>

namespace qel::math {

template <class T>
Matrix3<T>::Matrix3()
    : m_elements{}
{}

template <class T>
Matrix3<T>::Matrix3(T m00, T m01, T m02, T m10, T m11, T m12, T m20, T m21, T m22)
    : m_elements{m00, m01, m02, m10, m11, m12, m20, m21, m22}
{}

template <class T> void Matrix3<T>::fill(T* elements) const
{
    std::copy(std::begin(m_elements), std::end(m_elements), elements);
}

template class Matrix3<float>;
template class Matrix3<double>;

} // namespace qel::math
