#pragma once

#include <qel/geometry/Transformation3D.h>
#include <qel/math/Matrix3.h>

namespace qel::geometry {

class AffineTransformation3DPrivate;

/// A 3 by 3 matrix, then a shift.
class QEL_API AffineTransformation3D : public Transformation3D
{
public:
    /// The identity.
    AffineTransformation3D();
    AffineTransformation3D(math::Vector3<double> const& translation, math::Matrix3<double> const& matrix);
    AffineTransformation3D(AffineTransformation3D const& other);
    AffineTransformation3D& operator=(AffineTransformation3D const& other);
    ~AffineTransformation3D() override;

    void map(math::Vector3<double>& point) const override;
    void map(math::Vector3<double>* begin, math::Vector3<double>* end) const override;

    /// 12.
    static unsigned int getNumOfParameter();

    math::Vector3<double> getTranslation() const;
    void setTranslation(math::Vector3<double> const& translation);
    /// The 3 by 3 matrix, whether it rotates or not.
    math::Matrix3<double> getRotationMatrix() const;
    void setRotationMatrix(math::Matrix3<double> const& matrix);

private:
    AffineTransformation3DPrivate* m_private;
};

} // namespace qel::geometry
