#pragma once

#include <qel/geometry/Transformation2D.h>

namespace qel::geometry {

class PolynomialTransformation2DPrivate;

/// One cubic polynomial for each coordinate of the image:
///
/// x' = c0 + c1 x + c2 y + c3 x^2 + c4 y^2 + c5 x y + c6 x^3 + c7 y^3 + c8 x^2 y + c9 x y^2
/// y' = c10 + c11 x + c12 y + c13 x^2 + c14 y^2 + c15 x y + c16 x^3 + c17 y^3 + c18 x^2 y + c19 x y^2
///
/// Parameters by index: c0 to c19.
class QEL_API PolynomialOrder3Transformation2D : public Transformation2D
{
public:
    /// All parameters are 0, so that each point goes to the origin.
    PolynomialOrder3Transformation2D();
    /// From 20 parameters in the order of their indices.
    explicit PolynomialOrder3Transformation2D(double const* parameters);
    PolynomialOrder3Transformation2D(PolynomialOrder3Transformation2D const& other);
    PolynomialOrder3Transformation2D& operator=(PolynomialOrder3Transformation2D const& other);
    ~PolynomialOrder3Transformation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 20.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

private:
    PolynomialTransformation2DPrivate* m_private;
};

} // namespace qel::geometry
