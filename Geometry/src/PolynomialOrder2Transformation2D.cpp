#include <qel/geometry/PolynomialOrder2Transformation2D.h>

#include "Geometry/private/PolynomialTransformation2DPrivate.h"

namespace qel::geometry {

PolynomialOrder2Transformation2D::PolynomialOrder2Transformation2D()
    : m_private(new PolynomialTransformation2DPrivate(2))
{}

PolynomialOrder2Transformation2D::PolynomialOrder2Transformation2D(double const* parameters)
    : PolynomialOrder2Transformation2D()
{
    for (unsigned int i = 0; i < getNumOfParameter(); ++i)
        setParam(i, parameters[i]);
}

PolynomialOrder2Transformation2D::PolynomialOrder2Transformation2D(PolynomialOrder2Transformation2D const& other)
    : Transformation2D(other)
    , m_private(new PolynomialTransformation2DPrivate(*other.m_private))
{}

PolynomialOrder2Transformation2D&
PolynomialOrder2Transformation2D::operator=(PolynomialOrder2Transformation2D const& other)
{
    *m_private = *other.m_private;
    return *this;
}

PolynomialOrder2Transformation2D::~PolynomialOrder2Transformation2D() { delete m_private; }

void PolynomialOrder2Transformation2D::map(math::Vector2<double>& point) const { m_private->map(&point, &point + 1); }

void PolynomialOrder2Transformation2D::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    m_private->map(begin, end);
}

unsigned int PolynomialOrder2Transformation2D::getNumOfParameter() { return 2 * numOfMonomials(2); }

double PolynomialOrder2Transformation2D::getParam(unsigned int index) const { return m_private->parameter(index); }

void PolynomialOrder2Transformation2D::setParam(unsigned int index, double value)
{
    m_private->parameter(index) = value;
}

} // namespace qel::geometry
