#pragma once

#include <qel/math/Matrix3.h>
#include <qel/math/Vector3.h>

namespace qel::geometry {

/// What translations, rigid and affine transformations of space are: a homogeneous matrix, of which the setters of each
/// class reach more or less.
class AffineTransformation3DPrivate
{
public:
    void map(math::Vector3<double>* begin, math::Vector3<double>* end) const;

    math::Vector3<double> getTranslation() const;
    void setTranslation(math::Vector3<double> const& translation);
    math::Matrix3<double> getMatrix() const;
    void setMatrix(math::Matrix3<double> const& matrix);

private:
    double m_matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

} // namespace qel::geometry
