#pragma once

#include <qel/geometry/Transformation2D.h>
#include <qel/math/Matrix2.h>

namespace qel::geometry {

class ProjectiveTransformation2DPrivate;

/// A rotation around the origin, then a shift.
///
/// Parameters by index: 0 tx, 1 ty, 2 the angle in radians. The indices 3 to 7 reach single elements of the homogeneous
/// matrix M as they do in ProjectiveTransformation2D: M(0, 1), M(1, 0), M(1, 1), M(2, 0), M(2, 1); whoever sets one
/// leaves the rigid motions.
class QEL_API RigidTransformation2D : public Transformation2D
{
public:
    /// The identity.
    RigidTransformation2D();
    /// `angle` in radians.
    RigidTransformation2D(double tx, double ty, double angle);
    /// `angle` in radians.
    RigidTransformation2D(math::Vector2<double> const& translation, double angle);
    RigidTransformation2D(RigidTransformation2D const& other);
    RigidTransformation2D& operator=(RigidTransformation2D const& other);
    ~RigidTransformation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 3.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

    math::Vector2<double> getTranslation() const;
    void setTranslation(math::Vector2<double> const& translation);
    /// The angle that was set last, in radians.
    double getRotation() const;
    /// Makes the rotation matrix ((cos, -sin), (sin, cos)) of an angle in radians.
    void setRotation(double angle);
    math::Matrix2<double> getRotationMatrix() const;

private:
    ProjectiveTransformation2DPrivate* m_private;
    double m_angle;
};

} // namespace qel::geometry
