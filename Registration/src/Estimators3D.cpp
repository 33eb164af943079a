#include "Registration/private/Estimators3D.h"

#include "Geometry/private/AffineTransformation3DPrivate.h"
#include "Registration/private/leastSquares.h"

#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/Translation3D.h>

namespace qel::registration {

using Point = math::Vector3<double>;

namespace {

double determinantOf(math::Matrix<double> const& m)
{
    return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) - m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
           m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

} // namespace

void Translation3DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin,
                                      Transformation& result)
{
    Point const mean = meanOf(begin, end);
    result.setTranslation(meanOf(targetBegin, targetBegin + (end - begin)) - mean);
}

void Rigid3DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result)
{
    Point const mean = meanOf(begin, end);
    Point const targetMean = meanOf(targetBegin, targetBegin + (end - begin));
    math::Matrix<double> u(3, 3); // the cross-covariance, then its left factor
    for (; begin != end; ++begin, ++targetBegin) {
        Point const p = *begin - mean;
        Point const q = *targetBegin - targetMean;
        for (unsigned int row = 0; row < 3; ++row)
            for (unsigned int column = 0; column < 3; ++column)
                u(row, column) += p[row] * q[column];
    }
    math::Vector<double> w;
    math::Matrix<double> v;
    math::singularValueDecomposition(u, w, v);
    // The best orthogonal matrix is V U^T. Where that is a reflection, the best rotation turns over the axis that
    // matters least.
    double signs[3] = {1, 1, 1};
    if (determinantOf(u) * determinantOf(v) < 0) {
        unsigned int least = 0;
        for (unsigned int i = 1; i < 3; ++i)
            if (w[i] < w[least])
                least = i;
        signs[least] = -1;
    }
    math::Matrix3<double> rotation;
    for (unsigned int row = 0; row < 3; ++row)
        for (unsigned int column = 0; column < 3; ++column)
            for (unsigned int i = 0; i < 3; ++i)
                rotation(row, column) += v(row, i) * signs[i] * u(column, i);
    result = Transformation();
    result.getPrivate()->setMatrix(rotation);
    Point turnedMean = mean;
    result.map(turnedMean);
    result.setTranslation(targetMean - turnedMean);
}

void Affine3DEstimator::estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result)
{
    math::Matrix<double> const c = fitCoordinates(begin, end, targetBegin, 4, computeAffineTerms<Point>);
    math::Matrix3<double> matrix;
    for (unsigned int row = 0; row < 3; ++row)
        for (unsigned int column = 0; column < 3; ++column)
            matrix(row, column) = c(1 + column, row);
    result = Transformation(Point(c(0, 0), c(0, 1), c(0, 2)), matrix);
}

} // namespace qel::registration
