#pragma once

#include <qel/Export.h>

namespace qel::math {

/// A vector of four components of `int`, `unsigned int`, `long`, `unsigned long`, `float` or `double`.
///
/// Arithmetic on integers wraps. An operation by `double` on integers converts each component to double, computes, and
/// converts back, towards 0. Dividing integers by the integer 0 is undefined, as it is for the numbers themselves.
template <class T> class QEL_API Vector4
{
public:
    /// Zeros.
    Vector4()
        : m_components{0, 0, 0, 0}
    {}
    Vector4(T x, T y, T z, T w)
        : m_components{x, y, z, w}
    {}
    /// From four components in a row.
    explicit Vector4(T const* components)
        : m_components{components[0], components[1], components[2], components[3]}
    {}

    /// How many components there are: 4.
    static unsigned int dim() { return 4; }

    /// The components, in a row.
    T* data() { return m_components; }
    T const* data() const { return m_components; }

    T const* getValue() const { return m_components; }
    void getValue(T& x, T& y, T& z, T& w) const
    {
        x = m_components[0];
        y = m_components[1];
        z = m_components[2];
        w = m_components[3];
    }

    void setValue(Vector4 const& other) { *this = other; }
    void setValue(T const* components) { *this = Vector4(components); }
    void setValue(T x, T y, T z, T w) { *this = Vector4(x, y, z, w); }

    /// The index is not checked.
    T& operator[](unsigned long index) { return m_components[index]; }
    T const& operator[](unsigned long index) const { return m_components[index]; }
    T& operator()(unsigned long index) { return m_components[index]; }
    T const& operator()(unsigned long index) const { return m_components[index]; }

    bool operator==(Vector4 const& other) const
    {
        return m_components[0] == other.m_components[0] && m_components[1] == other.m_components[1] &&
               m_components[2] == other.m_components[2] && m_components[3] == other.m_components[3];
    }
    bool operator!=(Vector4 const& other) const { return !(*this == other); }

    /// The scalar product.
    T dot(Vector4 const& other) const;
    /// Sum of the squared components, computed in double.
    double squaredLength() const;
    /// Euclidean length.
    double length() const;

    Vector4& operator*=(int factor);
    Vector4& operator*=(double factor);
    Vector4& operator/=(int divisor);
    Vector4& operator/=(double divisor);
    Vector4& operator+=(Vector4 const& other);
    Vector4& operator-=(Vector4 const& other);

    Vector4 operator*(int factor) const { return Vector4(*this) *= factor; }
    Vector4 operator*(double factor) const { return Vector4(*this) *= factor; }
    Vector4 operator/(int divisor) const { return Vector4(*this) /= divisor; }
    Vector4 operator/(double divisor) const { return Vector4(*this) /= divisor; }
    Vector4 operator+(Vector4 const& other) const { return Vector4(*this) += other; }
    Vector4 operator-(Vector4 const& other) const { return Vector4(*this) -= other; }

private:
    T m_components[4];
};

} // namespace qel::math
