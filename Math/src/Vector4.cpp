#include <qel/math/Vector4.h>

#include "Math/private/ComponentArithmetic.h"

namespace qel::math {

template <class T> T Vector4<T>::dot(Vector4 const& other) const
{
    T sum = 0;
    for (unsigned int i = 0; i < 4; ++i)
        sum = added(sum, multiplied(m_components[i], other.m_components[i]));
    return sum;
}

template <class T> double Vector4<T>::squaredLength() const
{
    double sum = 0;
    for (T const component : m_components)
        sum += static_cast<double>(component) * static_cast<double>(component);
    return sum;
}

template <class T> double Vector4<T>::length() const { return std::sqrt(squaredLength()); }

template <class T> Vector4<T>& Vector4<T>::operator*=(int factor)
{
    for (T& component : m_components)
        component = multiplied(component, static_cast<T>(factor));
    return *this;
}

template <class T> Vector4<T>& Vector4<T>::operator*=(double factor)
{
    for (T& component : m_components)
        component = fromDouble<T>(static_cast<double>(component) * factor);
    return *this;
}

template <class T> Vector4<T>& Vector4<T>::operator/=(int divisor)
{
    for (T& component : m_components)
        component = divided(component, static_cast<T>(divisor));
    return *this;
}

template <class T> Vector4<T>& Vector4<T>::operator/=(double divisor)
{
    for (T& component : m_components)
        component = fromDouble<T>(static_cast<double>(component) / divisor);
    return *this;
}

template <class T> Vector4<T>& Vector4<T>::operator+=(Vector4 const& other)
{
    for (unsigned int i = 0; i < 4; ++i)
        m_components[i] = added(m_components[i], other.m_components[i]);
    return *this;
}

template <class T> Vector4<T>& Vector4<T>::operator-=(Vector4 const& other)
{
    for (unsigned int i = 0; i < 4; ++i)
        m_components[i] = subtracted(m_components[i], other.m_components[i]);
    return *this;
}

template class Vector4<int>;
template class Vector4<unsigned int>;
template class Vector4<long>;
template class Vector4<unsigned long>;
template class Vector4<float>;
template class Vector4<double>;

} // namespace qel::math
