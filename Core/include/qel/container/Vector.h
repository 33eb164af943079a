#pragma once

#include <qel/Export.h>

namespace qel::container {

template <class T> class VectorPrivate;

/// A growable array that can cross the library's border.
///
/// It exists for `double`, `unsigned long`, `unsigned int`, `unsigned char`, `long`, `int`, and for math::Vector2,
/// math::Vector3 and math::Vector4 of `int`, `unsigned int`, `long`, `unsigned long` and `double`. Copying copies the
/// elements. A pointer into the array is valid until its size or capacity changes.
template <class T> class QEL_API Vector
{
public:
    /// An empty array.
    Vector();
    /// `size` elements of value 0.
    explicit Vector(unsigned long size);
    Vector(Vector const& other);
    ~Vector();

    Vector& operator=(Vector const& other);

    T* data();
    T const* data() const;
    T* begin();
    T const* begin() const;
    T* end();
    T const* end() const;

    unsigned long size() const;
    bool empty() const;
    void clear();
    void reserve(unsigned long count);
    /// New elements are 0.
    void resize(unsigned long count);
    void push_back(T const& value);

    /// The index is not checked.
    T& operator[](unsigned long index);
    T const& operator[](unsigned long index) const;

    /// True where both have the same size and equal elements.
    bool operator==(Vector const& other) const;
    bool operator!=(Vector const& other) const;

private:
    VectorPrivate<T>* m_private;
};

} // namespace qel::container
