#pragma once

#include <qel/geometry/Transformation2D.h>

namespace qel::geometry {

class ProjectiveTransformation2DPrivate;

/// A shift: x' = x + tx, y' = y + ty.
///
/// Parameters by index: 0 tx, 1 ty.
class QEL_API Translation2D : public Transformation2D
{
public:
    /// The identity.
    Translation2D();
    Translation2D(double tx, double ty);
    explicit Translation2D(math::Vector2<double> const& translation);
    Translation2D(Translation2D const& other);
    Translation2D& operator=(Translation2D const& other);
    ~Translation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 2.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

    math::Vector2<double> getTranslation() const;
    void setTranslation(math::Vector2<double> const& translation);

private:
    ProjectiveTransformation2DPrivate* m_private;
};

} // namespace qel::geometry
