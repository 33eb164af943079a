#pragma once

#include <qel/Export.h>

namespace qel::math {

/// A 3 by 3 matrix of `float` or `double`, kept row by row.
template <class T> class QEL_API Matrix3
{
public:
    /// Zeros.
    Matrix3();
    /// From all elements in row order.
    Matrix3(T m00, T m01, T m02, T m10, T m11, T m12, T m20, T m21, T m22);

    /// Neither index is checked.
    T& operator()(unsigned long row, unsigned long column) { return m_elements[3 * row + column]; }
    T const& operator()(unsigned long row, unsigned long column) const { return m_elements[3 * row + column]; }

    /// Writes the nine elements to `elements`, in row order.
    void fill(T* elements) const;

private:
    T m_elements[9];
};

} // namespace qel::math
