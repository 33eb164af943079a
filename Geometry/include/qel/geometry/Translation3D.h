#pragma once

#include <qel/geometry/Transformation3D.h>

namespace qel::geometry {

class AffineTransformation3DPrivate;

/// A shift.
class QEL_API Translation3D : public Transformation3D
{
public:
    /// The identity.
    Translation3D();
    Translation3D(double tx, double ty, double tz);
    explicit Translation3D(math::Vector3<double> const& translation);
    Translation3D(Translation3D const& other);
    Translation3D& operator=(Translation3D const& other);
    ~Translation3D() override;

    void map(math::Vector3<double>& point) const override;
    void map(math::Vector3<double>* begin, math::Vector3<double>* end) const override;

    /// 3.
    static unsigned int getNumOfParameter();

    math::Vector3<double> getTranslation() const;
    void setTranslation(math::Vector3<double> const& translation);

private:
    AffineTransformation3DPrivate* m_private;
};

} // namespace qel::geometry
