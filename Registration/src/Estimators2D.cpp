#include "Registration/private/Estimators2D.h"

#include "Geometry/private/PolynomialTransformation2DPrivate.h"
#include "Registration/private/leastSquares.h"

#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/Translation2D.h>

#include <algorithm>
#include <cmath>

namespace qel::registration {

using Point = math::Vector2<double>;

void Translation2DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin,
                                      Transformation& result)
{
    Point const mean = meanOf(begin, end);
    result.setTranslation(meanOf(targetBegin, targetBegin + (end - begin)) - mean);
}

void Rigid2DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result)
{
    constexpr double nothing = 1.4901161193847656e-8; // the root of the smallest step from 1
    Point const mean = meanOf(begin, end);
    Point const targetMean = meanOf(targetBegin, targetBegin + (end - begin));
    double along = 0;
    double across = 0;
    for (; begin != end; ++begin, ++targetBegin) {
        Point const p = *begin - mean;
        Point const q = *targetBegin - targetMean;
        along += p[0] * q[0] + p[1] * q[1];
        across += q[0] * p[1] - q[1] * p[0];
    }
    result = Transformation();
    if (std::abs(along) < nothing && std::abs(across) < nothing)
        return;
    result.setRotation(-std::atan2(across, along));
    Point turnedMean = mean;
    result.map(turnedMean);
    result.setTranslation(targetMean - turnedMean);
}

void Affine2DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result)
{
    math::Matrix<double> const c = fitCoordinates(begin, end, targetBegin, 3, computeAffineTerms<Point>);
    result = Transformation(c(0, 0), c(0, 1), c(1, 0), c(2, 0), c(1, 1), c(2, 1));
}

void Projective2DEstimatorByKernelEstimation::estimate(Point const* begin, Point const* end, Point const* targetBegin,
                                                       Transformation& result)
{
    constexpr std::size_t numOfColumns = 9;
    std::size_t const size = end - begin;
    if (size == 0)
        QEL_THROW(RuntimeError, "Bad points set the dimension is 0");
    // Rows of zeros, where the points give too few, change no kernel.
    math::Matrix<double> system(std::max(2 * size, numOfColumns), numOfColumns);
    for (std::size_t i = 0; i < size; ++i) {
        double const x = begin[i][0];
        double const y = begin[i][1];
        for (unsigned int axis = 0; axis < 2; ++axis) {
            double* const row = system[2 * i + axis];
            double const target = targetBegin[i][axis];
            row[axis] = 1;
            row[2 + 2 * axis] = x;
            row[3 + 2 * axis] = y;
            row[6] = -target * x;
            row[7] = -target * y;
            row[8] = -target;
        }
    }
    math::Vector<double> w;
    math::Matrix<double> v;
    math::singularValueDecomposition(system, w, v);
    std::size_t smallest = 0;
    for (std::size_t i = 1; i < numOfColumns; ++i)
        if (w[i] < w[smallest])
            smallest = i;
    for (unsigned int i = 0; i < 8; ++i) {
        double const parameter = v(i, smallest) / v(8, smallest);
        if (!std::isfinite(parameter))
            QEL_THROW(RuntimeError, "bad precision.");
        result.setParam(i, parameter);
    }
}

namespace {

template <unsigned int order, class Transformation>
void estimatePolynomials(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result)
{
    constexpr unsigned int count = geometry::numOfMonomials(order);
    math::Matrix<double> const c =
        fitCoordinates(begin, end, targetBegin, count, [](Point const& point, double* terms) {
            geometry::computeMonomials<order>(point[0], point[1], terms);
        });
    for (unsigned int i = 0; i < 2 * count; ++i)
        result.setParam(i, c(i % count, i / count));
}

} // namespace

void Polynomial2DOrder2Estimator::estimate(Point const* begin, Point const* end, Point const* targetBegin,
                                           Transformation& result)
{
    estimatePolynomials<2>(begin, end, targetBegin, result);
}

void Polynomial2DOrder3Estimator::estimate(Point const* begin, Point const* end, Point const* targetBegin,
                                           Transformation& result)
{
    estimatePolynomials<3>(begin, end, targetBegin, result);
}

} // namespace qel::registration
