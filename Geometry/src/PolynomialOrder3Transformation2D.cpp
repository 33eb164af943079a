#include <qel/geometry/PolynomialOrder3Transformation2D.h>

#include "Geometry/private/PolynomialTransformation2DPrivate.h"

namespace qel::geometry {

PolynomialOrder3Transformation2D::PolynomialOrder3Transformation2D()
    : m_private(new PolynomialTransformation2DPrivate(3))
{}

PolynomialOrder3Transformation2D::PolynomialOrder3Transformation2D(double const* parameters)
    : PolynomialOrder3Transformation2D()
{
    for (unsigned int i = 0; i < getNumOfParameter(); ++i)
        setParam(i, parameters[i]);
}

PolynomialOrder3Transformation2D::PolynomialOrder3Transformation2D(PolynomialOrder3Transformation2D const& other)
    : Transformation2D(other)
    , m_private(new PolynomialTransformation2DPrivate(*other.m_private))
{}

PolynomialOrder3Transformation2D&
PolynomialOrder3Transformation2D::operator=(PolynomialOrder3Transformation2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

PolynomialOrder3Transformation2D::~PolynomialOrder3Transformation2D() { delete m_private; }

void PolynomialOrder3Transformation2D::map(math::Vector2<double>& point) const { m_private->map(&point, &point + 1); }

void PolynomialOrder3Transformation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int PolynomialOrder3Transformation2D::getNumOfParameter() { return 2 * numOfMonomials(3); }

double PolynomialOrder3Transformation2D::getParam(unsigned int index) const { return m_private->parameter(index); }

void PolynomialOrder3Transformation2D::setParam(unsigned int index, double value)
{
    m_private->parameter(index) = value;
}

} // namespace qel::geometry
