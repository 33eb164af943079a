#pragma once

#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>

namespace qel::geometry {

/// What translations, rigid, affine and projective transformations of the plane are: a homogeneous matrix, of which the
/// setters of each class reach more or less.
class ProjectiveTransformation2DPrivate
{
public:
    /// The identity.
    ProjectiveTransformation2DPrivate();

    void map(math::Vector2<double>& point) const;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const;

    /// The elements in the order of the projective class's parameters, of which the caller has the first `count`.
    double& element(unsigned int index, unsigned int count);
    double element(unsigned int index, unsigned int count) const;

    math::Vector2<double> getTranslation() const;
    void setTranslation(math::Vector2<double> const& translation);
    math::Matrix2<double> getRotationMatrix() const;
    void setRotationMatrix(math::Matrix2<double> const& matrix);

    math::Matrix3<double> matrix;
};

} // namespace qel::geometry
