#pragma once

#include <vector>

#include <qel/container/Vector.h>

namespace qel::container {

template <class T> class VectorPrivate
{
public:
    std::vector<T> elements;
};

template <class T>
Vector<T>::Vector()
    : m_private(new VectorPrivate<T>)
{}

template <class T>
Vector<T>::Vector(unsigned long size)
    : m_private(new VectorPrivate<T>{std::vector<T>(size)})
{}

template <class T>
Vector<T>::Vector(Vector const& other)
    : m_private(new VectorPrivate<T>(*other.m_private))
{}

template <class T> Vector<T>::~Vector() { delete m_private; }

template <class T> Vector<T>& Vector<T>::operator=(Vector const& other)
{
    m_private->elements = other.m_private->elements;
    return *this;
}

template <class T> T* Vector<T>::data() { return m_private->elements.data(); }

template <class T> T const* Vector<T>::data() const { return m_private->elements.data(); }

template <class T> T* Vector<T>::begin() { return data(); }

template <class T> T const* Vector<T>::begin() const { return data(); }

template <class T> T* Vector<T>::end() { return data() + size(); }

template <class T> T const* Vector<T>::end() const { return data() + size(); }

template <class T> unsigned long Vector<T>::size() const { return m_private->elements.size(); }

template <class T> bool Vector<T>::empty() const { return m_private->elements.empty(); }

template <class T> void Vector<T>::clear() { m_private->elements.clear(); }

template <class T> void Vector<T>::reserve(unsigned long count) { m_private->elements.reserve(count); }

template <class T> void Vector<T>::resize(unsigned long count) { m_private->elements.resize(count); }

template <class T> void Vector<T>::push_back(T const& value) { m_private->elements.push_back(value); }

template <class T> T& Vector<T>::operator[](unsigned long index) { return m_private->elements[index]; }

template <class T> T const& Vector<T>::operator[](unsigned long index) const { return m_private->elements[index]; }

template <class T> bool Vector<T>::operator==(Vector const& other) const
{
    return m_private->elements == other.m_private->elements;
}

template <class T> bool Vector<T>::operator!=(Vector const& other) const { return !(*this == other); }

} // namespace qel::container
