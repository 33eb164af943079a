#pragma once

#include <qel/geometry/Transformation2D.h>
#include <qel/math/Matrix2.h>

namespace qel::geometry {

class ProjectiveTransformation2DPrivate;

/// A homogeneous 3 by 3 matrix M with the last element 1: with (u, v, w) = M (x, y, 1), the image of (x, y) is
/// (u / w, v / w).
///
/// Parameters by index: 0 M(0, 2), which is tx; 1 M(1, 2), which is ty; 2 M(0, 0); 3 M(0, 1); 4 M(1, 0); 5 M(1, 1);
/// 6 M(2, 0); 7 M(2, 1).
///
/// `map` throws RuntimeError "bad precision." where the absolute value of w is below 1e-8.
class QEL_API ProjectiveTransformation2D : public Transformation2D
{
public:
    /// The identity.
    ProjectiveTransformation2D();
    /// The parameters in the order of their indices.
    ProjectiveTransformation2D(double tx, double ty, double m00, double m01, double m10, double m11, double m20,
                               double m21);
    /// `projection`: M(2, 0) and M(2, 1).
    ProjectiveTransformation2D(math::Vector2<double> const& translation, math::Matrix2<double> const& matrix,
                               math::Vector2<double> const& projection);
    ProjectiveTransformation2D(ProjectiveTransformation2D const& other);
    ProjectiveTransformation2D& operator=(ProjectiveTransformation2D const& other);
    ~ProjectiveTransformation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 8.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

    math::Vector2<double> getTranslation() const;
    void setTranslation(math::Vector2<double> const& translation);
    /// The upper left 2 by 2 matrix, whether it rotates or not.
    math::Matrix2<double> getRotationMatrix() const;
    void setRotationMatrix(math::Matrix2<double> const& matrix);
    /// M(2, 0) and M(2, 1).
    math::Vector2<double> getProjectionVector() const;

private:
    ProjectiveTransformation2DPrivate* m_private;
};

} // namespace qel::geometry
