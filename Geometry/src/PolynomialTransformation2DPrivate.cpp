#include "Geometry/private/PolynomialTransformation2DPrivate.h"

#include "Core/private/Throw.h"

namespace qel::geometry {

namespace {

template <unsigned int order>
void mapRange(double const* coefficients, math::Vector2<double>* begin, math::Vector2<double>* end)
{
    constexpr unsigned int count = numOfMonomials(order);
    for (; begin != end; ++begin) {
        double monomials[count];
        computeMonomials<order>((*begin)[0], (*begin)[1], monomials);
        double x = coefficients[0];
        double y = coefficients[10];
        for (unsigned int i = 1; i < count; ++i) {
            x += coefficients[i] * monomials[i];
            y += coefficients[10 + i] * monomials[i];
        }
        begin->setValue(x, y);
    }
}

} // namespace

void PolynomialTransformation2DPrivate::map(math::Vector2<double>* begin, math::Vector2<double>* end) const
{
    if (m_order == 2)
        mapRange<2>(m_coefficients, begin, end);
    else
        mapRange<3>(m_coefficients, begin, end);
}

double& PolynomialTransformation2DPrivate::parameter(unsigned int index)
{
    unsigned int const count = numOfMonomials(m_order);
    if (index >= 2 * count)
        QEL_THROW(BadIndex, "The transformation has no parameter " << index << ".");
    return m_coefficients[index < count ? index : index - count + 10];
}

} // namespace qel::geometry
