#include <qel/math/Matrix2.h>

namespace qel::math {

template <class T>
Matrix2<T>::Matrix2()
    : m_elements{}
{}

template <class T>
Matrix2<T>::Matrix2(T m00, T m01, T m10, T m11)
    : m_elements{m00, m01, m10, m11}
{}

template class Matrix2<float>;
template class Matrix2<double>;

} // namespace qel::math
