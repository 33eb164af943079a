#pragma once

#include "Core/private/Throw.h"
#include "Math/private/SingularValueDecomposition.h"

namespace qel::registration {

/// The mean of a range of points. Throws RuntimeError where there is none.
template <class Point> Point meanOf(Point const* begin, Point const* end)
{
    if (begin == end)
        QEL_THROW(RuntimeError, "Bad points set the dimension is 0");
    Point sum;
    for (Point const* point = begin; point != end; ++point)
        sum += *point;
    return sum / static_cast<double>(end - begin);
}

/// Solves for the coefficients with which `count` terms of a point give each coordinate of its target: one column of
/// the result for each coordinate. `computeTerms(point, terms)` writes the terms.
///
/// The system of all coordinates falls apart into one for each, all with one matrix: so its singular values and its
/// shortest solution are those of the whole system, for a fraction of the work.
template <class Point, class ComputeTerms>
math::Matrix<double> fitCoordinates(Point const* begin, Point const* end, Point const* targetBegin, unsigned int count,
                                    ComputeTerms const& computeTerms)
{
    if (begin == end)
        QEL_THROW(RuntimeError, "Bad points set the dimension is 0");
    std::size_t const size = end - begin;
    math::Matrix<double> terms(size, count);
    math::Matrix<double> targets(size, Point::dim());
    for (std::size_t i = 0; i < size; ++i) {
        computeTerms(begin[i], terms[i]);
        for (unsigned int axis = 0; axis < Point::dim(); ++axis)
            targets(i, axis) = targetBegin[i][axis];
    }
    math::Matrix<double> coefficients;
    math::fitSVD(terms, targets, coefficients);
    return coefficients;
}

/// The terms of an affine transformation: 1 and the coordinates.
template <class Point> void computeAffineTerms(Point const& point, double* terms)
{
    terms[0] = 1;
    for (unsigned int axis = 0; axis < Point::dim(); ++axis)
        terms[1 + axis] = point[axis];
}

} // namespace qel::registration
