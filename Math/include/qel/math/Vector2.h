#pragma once

#include <qel/Export.h>

namespace qel::math {

/// A vector of two components of `int`, `unsigned int`, `long`, `unsigned long`, `float` or `double`.
///
/// Arithmetic on integers wraps. An operation by `double` on integers converts each component to double, computes, and
/// converts back, towards 0. Dividing integers by the integer 0 is undefined, as it is for the numbers themselves.
template <class T> class QEL_API Vector2
{
public:
    /// Zeros.
    Vector2()
        : m_components{0, 0}
    {}
    Vector2(T x, T y)
        : m_components{x, y}
    {}
    /// From two components in a row.
    explicit Vector2(T const* components)
        : m_components{components[0], components[1]}
    {}

    /// How many components there are: 2.
    static unsigned int dim() { return 2; }

    /// The components, in a row.
    T* data() { return m_components; }
    T const* data() const { return m_components; }

    T const* getValue() const { return m_components; }
    void getValue(T& x, T& y) const
    {
        x = m_components[0];
        y = m_components[1];
    }

    void setValue(Vector2 const& other) { *this = other; }
    void setValue(T const* components) { *this = Vector2(components); }
    void setValue(T x, T y) { *this = Vector2(x, y); }

    /// The index is not checked.
    T& operator[](unsigned long index) { return m_components[index]; }
    T const& operator[](unsigned long index) const { return m_components[index]; }
    T& operator()(unsigned long index) { return m_components[index]; }
    T const& operator()(unsigned long index) const { return m_components[index]; }

    bool operator==(Vector2 const& other) const
    {
        return m_components[0] == other.m_components[0] && m_components[1] == other.m_components[1];
    }
    bool operator!=(Vector2 const& other) const { return !(*this == other); }

    /// The scalar product.
    T dot(Vector2 const& other) const;
    /// Sum of the squared components, computed in double.
    double squaredLength() const;
    /// Euclidean length.
    double length() const;

    Vector2& operator*=(int factor);
    Vector2& operator*=(double factor);
    Vector2& operator/=(int divisor);
    Vector2& operator/=(double divisor);
    Vector2& operator+=(Vector2 const& other);
    Vector2& operator-=(Vector2 const& other);

    Vector2 operator*(int factor) const { return Vector2(*this) *= factor; }
    Vector2 operator*(double factor) const { return Vector2(*this) *= factor; }
    Vector2 operator/(int divisor) const { return Vector2(*this) /= divisor; }
    Vector2 operator/(double divisor) const { return Vector2(*this) /= divisor; }
    Vector2 operator+(Vector2 const& other) const { return Vector2(*this) += other; }
    Vector2 operator-(Vector2 const& other) const { return Vector2(*this) -= other; }

private:
    T m_components[2];
};

} // namespace qel::math
