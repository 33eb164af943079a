#pragma once

#include <qel/geometry/Transformation3D.h>
#include <qel/math/Matrix3.h>

namespace qel::geometry {

class AffineTransformation3DPrivate;

/// A rotation around the origin, then a shift.
class QEL_API RigidTransformation3D : public Transformation3D
{
public:
    /// The identity.
    RigidTransformation3D();
    /// The angles around the axes X, Y and Z, in degrees, as setRotations() takes them.
    RigidTransformation3D(math::Vector3<double> const& translation, double rx, double ry, double rz);
    RigidTransformation3D(RigidTransformation3D const& other);
    RigidTransformation3D& operator=(RigidTransformation3D const& other);
    ~RigidTransformation3D() override;

    void map(math::Vector3<double>& point) const override;
    void map(math::Vector3<double>* begin, math::Vector3<double>* end) const override;

    /// 5, with which the fewest points of a registration are counted; the degrees of freedom are 6.
    static unsigned int getNumOfParameter();

    math::Vector3<double> getTranslation() const;
    void setTranslation(math::Vector3<double> const& translation);
    /// Turns by `rx` around the X axis, then by `ry` around Y, then by `rz` around Z; in degrees.
    void setRotations(double rx, double ry, double rz);
    math::Matrix3<double> getRotationMatrix() const;

    /// Inside of the library.
    AffineTransformation3DPrivate* getPrivate() const;

private:
    AffineTransformation3DPrivate* m_private;
};

} // namespace qel::geometry
