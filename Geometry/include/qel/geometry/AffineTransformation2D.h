#pragma once

#include <qel/geometry/Transformation2D.h>
#include <qel/math/Matrix2.h>

namespace qel::geometry {

class ProjectiveTransformation2DPrivate;

/// A 2 by 2 matrix, then a shift.
///
/// Parameters by index: 0 tx, 1 ty, then the matrix row by row: 2 M(0, 0), 3 M(0, 1), 4 M(1, 0), 5 M(1, 1).
class QEL_API AffineTransformation2D : public Transformation2D
{
public:
    /// The identity.
    AffineTransformation2D();
    /// The parameters in the order of their indices.
    AffineTransformation2D(double tx, double ty, double m00, double m01, double m10, double m11);
    AffineTransformation2D(math::Vector2<double> const& translation, math::Matrix2<double> const& matrix);
    AffineTransformation2D(AffineTransformation2D const& other);
    AffineTransformation2D& operator=(AffineTransformation2D const& other);
    ~AffineTransformation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 6.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

    math::Vector2<double> getTranslation() const;
    void setTranslation(math::Vector2<double> const& translation);
    /// The 2 by 2 matrix, whether it rotates or not.
    math::Matrix2<double> getRotationMatrix() const;
    void setRotationMatrix(math::Matrix2<double> const& matrix);

private:
    ProjectiveTransformation2DPrivate* m_private;
};

} // namespace qel::geometry
