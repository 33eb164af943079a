#pragma once

#include <qel/Export.h>

namespace qel::math {

/// A 2 by 2 matrix of `float` or `double`, kept row by row.
template <class T> class QEL_API Matrix2
{
public:
    /// Zeros.
    Matrix2();
    /// From all elements in row order.
    Matrix2(T m00, T m01, T m10, T m11);

    /// Neither index is checked.
    T& operator()(unsigned long row, unsigned long column) { return m_elements[2 * row + column]; }
    T const& operator()(unsigned long row, unsigned long column) const { return m_elements[2 * row + column]; }

private:
    T m_elements[4];
};

} // namespace qel::math
