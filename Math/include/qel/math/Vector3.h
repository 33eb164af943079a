#pragma once

#include <qel/Export.h>

namespace qel::math {

/// A vector of three components of `int`, `unsigned int`, `long`, `unsigned long`, `float` or `double`.
///
/// Arithmetic on integers wraps. An operation by `double` on integers converts each component to double, computes, and
/// converts back, towards 0. Dividing integers by the integer 0 is undefined, as it is for the numbers themselves.
template <class T> class QEL_API Vector3
{
public:
    /// Zeros.
    Vector3()
        : m_components{0, 0, 0}
    {}
    Vector3(T x, T y, T z)
        : m_components{x, y, z}
    {}
    /// From three components in a row.
    explicit Vector3(T const* components)
        : m_components{components[0], components[1], components[2]}
    {}

    /// How many components there are: 3.
    static unsigned int dim() { return 3; }

    /// The components, in a row.
    T* data() { return m_components; }
    T const* data() const { return m_components; }

    T const* getValue() const { return m_components; }
    void getValue(T& x, T& y, T& z) const
    {
        x = m_components[0];
        y = m_components[1];
        z = m_components[2];
    }

    void setValue(Vector3 const& other) { *this = other; }
    void setValue(T const* components) { *this = Vector3(components); }
    void setValue(T x, T y, T z) { *this = Vector3(x, y, z); }

    /// The index is not checked.
    T& operator[](unsigned long index) { return m_components[index]; }
    T const& operator[](unsigned long index) const { return m_components[index]; }
    T& operator()(unsigned long index) { return m_components[index]; }
    T const& operator()(unsigned long index) const { return m_components[index]; }

    bool operator==(Vector3 const& other) const
    {
        return m_components[0] == other.m_components[0] && m_components[1] == other.m_components[1] &&
               m_components[2] == other.m_components[2];
    }
    bool operator!=(Vector3 const& other) const { return !(*this == other); }

    /// The scalar product.
    T dot(Vector3 const& other) const;
    /// Sum of the squared components, computed in double.
    double squaredLength() const;
    /// Euclidean length.
    double length() const;

    Vector3& operator*=(int factor);
    Vector3& operator*=(double factor);
    Vector3& operator/=(int divisor);
    Vector3& operator/=(double divisor);
    Vector3& operator+=(Vector3 const& other);
    Vector3& operator-=(Vector3 const& other);

    Vector3 operator*(int factor) const { return Vector3(*this) *= factor; }
    Vector3 operator*(double factor) const { return Vector3(*this) *= factor; }
    Vector3 operator/(int divisor) const { return Vector3(*this) /= divisor; }
    Vector3 operator/(double divisor) const { return Vector3(*this) /= divisor; }
    Vector3 operator+(Vector3 const& other) const { return Vector3(*this) += other; }
    Vector3 operator-(Vector3 const& other) const { return Vector3(*this) -= other; }

private:
    T m_components[3];
};

} // namespace qel::math
