#pragma once

#include <qel/geometry/Transformation2D.h>

namespace qel::geometry {

class PolynomialTransformation2DPrivate;

/// One quadratic polynomial for each coordinate of the image:
///
/// x' = c0 + c1 x + c2 y + c3 x^2 + c4 y^2 + c5 x y
/// y' = c10 + c11 x + c12 y + c13 x^2 + c14 y^2 + c15 x y
///
/// Parameters by index: 0 to 5 are c0 to c5, 6 to 11 are c10 to c15.
class QEL_API PolynomialOrder2Transformation2D : public Transformation2D
{
public:
    /// All parameters are 0, so that each point goes to the origin.
    PolynomialOrder2Transformation2D();
    /// From 12 parameters in the order of their indices.
    explicit PolynomialOrder2Transformation2D(double const* parameters);
    PolynomialOrder2Transformation2D(PolynomialOrder2Transformation2D const& other);
    PolynomialOrder2Transformation2D& operator=(PolynomialOrder2Transformation2D const& other);
    ~PolynomialOrder2Transformation2D() override;

    void map(math::Vector2<double>& point) const override;
    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const override;

    /// 12.
    static unsigned int getNumOfParameter();
    /// Throws BadIndex where there is no such parameter.
    double getParam(unsigned int index) const;
    /// Throws BadIndex where there is no such parameter.
    void setParam(unsigned int index, double value);

private:
    PolynomialTransformation2DPrivate* m_private;
};

} // namespace qel::geometry
