#include "Geometry/private/AffineTransformation3DPrivate.h"

namespace qel::geometry {

void AffineTransformation3DPrivate::map(math::Vector3<double>* begin, math::Vector3<double>* end) const
{
    auto const& m = m_matrix;
    for (; begin != end; ++begin) {
        double const x = (*begin)[0];
        double const y = (*begin)[1];
        double const z = (*begin)[2];
        begin->setValue(m[0][0] * x + m[0][1] * y + m[0][2] * z + m[0][3],
                        m[1][0] * x + m[1][1] * y + m[1][2] * z + m[1][3],
                        m[2][0] * x + m[2][1] * y + m[2][2] * z + m[2][3]);
    }
}

math::Vector3<double> AffineTransformation3DPrivate::getTranslation() const
{
    return math::Vector3<double>(m_matrix[0][3], m_matrix[1][3], m_matrix[2][3]);
}

void AffineTransformation3DPrivate::setTranslation(math::Vector3<double> const& translation)
{
    for (unsigned int row = 0; row < 3; ++row)
        m_matrix[row][3] = translation[row];
}

math::Matrix3<double> AffineTransformation3DPrivate::getMatrix() const
{
    math::Matrix3<double> matrix;
    for (unsigned int row = 0; row < 3; ++row)
        for (unsigned int column = 0; column < 3; ++column)
            matrix(row, column) = m_matrix[row][column];
    return matrix;
}

void AffineTransformation3DPrivate::setMatrix(math::Matrix3<double> const& matrix)
{
    for (unsigned int row = 0; row < 3; ++row)
        for (unsigned int column = 0; column < 3; ++column)
            m_matrix[row][column] = matrix(row, column);
}

} // namespace qel::geometry
