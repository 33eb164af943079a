#pragma once

#include <qel/math/Vector2.h>

namespace qel::geometry {

/// How many monomials of x and y have a degree of at most `order`, which is 2 or 3.
constexpr unsigned int numOfMonomials(unsigned int order) { return (order + 1) * (order + 2) / 2; }

/// The monomials in the order of a polynomial's coefficients. Those of order 2 are the first of those of order 3.
template <unsigned int order> void computeMonomials(double x, double y, double* monomials)
{
    static_assert(order == 2 || order == 3);
    monomials[0] = 1;
    monomials[1] = x;
    monomials[2] = y;
    monomials[3] = x * x;
    monomials[4] = y * y;
    monomials[5] = x * y;
    if constexpr (order == 3) {
        monomials[6] = x * x * x;
        monomials[7] = y * y * y;
        monomials[8] = x * x * y;
        monomials[9] = x * y * y;
    }
}

/// What polynomial transformations of both orders are: the coefficients of the cubic ones, of which order 2 uses the
/// first six of each coordinate.
class PolynomialTransformation2DPrivate
{
public:
    /// All coefficients are 0.
    explicit PolynomialTransformation2DPrivate(unsigned int order)
        : m_order(order)
    {}

    void map(math::Vector2<double>* begin, math::Vector2<double>* end) const;

    /// Throws BadIndex where the order has no such parameter.
    double& parameter(unsigned int index);

private:
    unsigned int m_order;
    double m_coefficients[20] = {};
};

} // namespace qel::geometry
