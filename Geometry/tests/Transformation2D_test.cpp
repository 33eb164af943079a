#include "Core/tests/Support/Support.h"

#include <qel/Exception.h>
#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/Translation2D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace qel;
using namespace qel::geometry;

namespace {

using Point = math::Vector2<double>;

Point mapped(Transformation2D const& transformation, Point point)
{
    transformation.map(point);
    return point;
}

} // namespace

TEST(Transformations2D, mapEveryPointToItselfByDefault)
{
    Point const point(3.25, -7.5);
    EXPECT_EQ(mapped(Translation2D(), point), point);
    EXPECT_EQ(mapped(RigidTransformation2D(), point), point);
    EXPECT_EQ(mapped(AffineTransformation2D(), point), point);
    EXPECT_EQ(mapped(ProjectiveTransformation2D(), point), point);
}

TEST(Transformations2D, translateByTheirParameters)
{
    Translation2D shift(2, -3);
    EXPECT_EQ(mapped(shift, Point(1, 1)), Point(3, -2));
    EXPECT_EQ(mapped(Translation2D(Point(0.5, 4)), Point(1, 1)), Point(1.5, 5));
    EXPECT_EQ(Translation2D::getNumOfParameter(), 2u);
    shift.setParam(0, 7);
    EXPECT_EQ(shift.getTranslation(), Point(7, -3));
    shift.setTranslation(Point(-1, 9));
    EXPECT_EQ(shift.getParam(0), -1);
    EXPECT_EQ(shift.getParam(1), 9);
}

TEST(Transformations2D, rotateThenTranslate)
{
    double const angle = 0.3;
    RigidTransformation2D const rigid(5, -2, angle);
    Point const image = mapped(rigid, Point(3, 4));
    EXPECT_EQ(image,
              Point(std::cos(angle) * 3 - std::sin(angle) * 4 + 5, std::sin(angle) * 3 + std::cos(angle) * 4 - 2));
    EXPECT_EQ(mapped(RigidTransformation2D(Point(5, -2), angle), Point(3, 4)), image);
    EXPECT_EQ(rigid.getRotation(), angle);
    EXPECT_EQ(rigid.getTranslation(), Point(5, -2));
    EXPECT_EQ(RigidTransformation2D::getNumOfParameter(), 3u);
}

TEST(Transformations2D, changeFourElementsWithTheAngleOfARigidOne)
{
    RigidTransformation2D rigid;
    rigid.setParam(2, 1.25);
    EXPECT_EQ(rigid.getParam(2), 1.25);
    EXPECT_EQ(rigid.getRotation(), 1.25);
    math::Matrix2<double> const matrix = rigid.getRotationMatrix();
    EXPECT_EQ(matrix(0, 0), std::cos(1.25));
    EXPECT_EQ(matrix(0, 1), -std::sin(1.25));
    EXPECT_EQ(matrix(1, 0), std::sin(1.25));
    EXPECT_EQ(matrix(1, 1), std::cos(1.25));
}

TEST(Transformations2D, reachSingleElementsOfARigidOne)
{
    RigidTransformation2D rigid(1, 2, 0);
    double const values[] = {-0.5, 0.25, 2, 0.125, -0.75};
    for (unsigned int i = 0; i < 5; ++i)
        rigid.setParam(3 + i, values[i]);
    for (unsigned int i = 0; i < 5; ++i)
        EXPECT_EQ(rigid.getParam(3 + i), values[i]);
    EXPECT_EQ(rigid.getRotation(), 0);
    double const w = 0.125 * 3 - 0.75 * 5 + 1;
    EXPECT_EQ(mapped(rigid, Point(3, 5)), Point((3 - 0.5 * 5 + 1) / w, (0.25 * 3 + 2 * 5 + 2) / w));
}

TEST(Transformations2D, applyAMatrixThenTranslate)
{
    AffineTransformation2D affine(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(mapped(affine, Point(10, 100)), Point(431, 652));
    EXPECT_EQ(mapped(AffineTransformation2D(Point(1, 2), math::Matrix2<double>(3, 4, 5, 6)), Point(10, 100)),
              Point(431, 652));
    EXPECT_EQ(AffineTransformation2D::getNumOfParameter(), 6u);
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_EQ(affine.getParam(i), i + 1.0);
    affine.setRotationMatrix(math::Matrix2<double>(-1, -2, -3, -4));
    for (unsigned int i = 2; i < 6; ++i)
        EXPECT_EQ(affine.getParam(i), 1.0 - i);
    EXPECT_EQ(affine.getRotationMatrix()(1, 0), -3);
    affine.setParam(4, 8);
    EXPECT_EQ(affine.getRotationMatrix()(1, 0), 8);
}

TEST(Transformations2D, divideByTheHomogeneousComponent)
{
    ProjectiveTransformation2D projective(1, 2, 3, 4, 5, 6, 0.5, 0.25);
    EXPECT_EQ(mapped(projective, Point(2, 8)), Point(39.0 / 4, 60.0 / 4));
    EXPECT_EQ(mapped(ProjectiveTransformation2D(Point(1, 2), math::Matrix2<double>(3, 4, 5, 6), Point(0.5, 0.25)),
                     Point(2, 8)),
              Point(39.0 / 4, 60.0 / 4));
    EXPECT_EQ(projective.getProjectionVector(), Point(0.5, 0.25));
    EXPECT_EQ(ProjectiveTransformation2D::getNumOfParameter(), 8u);
    double const values[] = {1, 2, 3, 4, 5, 6, 0.5, 0.25};
    for (unsigned int i = 0; i < 8; ++i)
        EXPECT_EQ(projective.getParam(i), values[i]);
    projective.setParam(7, 3);
    EXPECT_EQ(projective.getProjectionVector(), Point(0.5, 3));
}

TEST(Transformations2D, refuseToDivideByNearlyNothing)
{
    ProjectiveTransformation2D const projective(0, 0, 1, 0, 0, 1, 1, 0);
    std::vector<Point> points = {Point(0, 4), Point(1, 4), Point(-1 + 0.9e-8, 4), Point(2, 4)};
    EXPECT_QEL_THROW(projective.map(points[2]), RuntimeError, "bad precision.");
    EXPECT_EQ(points[2], Point(-1 + 0.9e-8, 4));
    // Those before it are mapped already.
    EXPECT_QEL_THROW(projective.map(points.data(), points.data() + 4), RuntimeError, "bad precision.");
    EXPECT_EQ(points[0], Point(0, 4));
    EXPECT_EQ(points[1], Point(0.5, 2));
    EXPECT_EQ(points[3], Point(2, 4));
    EXPECT_NO_THROW(mapped(projective, Point(-1 + 1.1e-8, 4)));
}

TEST(Transformations2D, refuseParametersThatTheyDoNotHave)
{
    Translation2D translation;
    RigidTransformation2D rigid;
    AffineTransformation2D affine;
    ProjectiveTransformation2D projective;
    EXPECT_QEL_THROW(translation.getParam(2), BadIndex, "The transformation has no parameter 2.");
    EXPECT_QEL_THROW(translation.setParam(2, 0), BadIndex, "The transformation has no parameter 2.");
    EXPECT_QEL_THROW(rigid.getParam(8), BadIndex, "The transformation has no parameter 8.");
    EXPECT_QEL_THROW(affine.setParam(6, 0), BadIndex, "The transformation has no parameter 6.");
    EXPECT_QEL_THROW(projective.getParam(8), BadIndex, "The transformation has no parameter 8.");
}

TEST(Transformations2D, areCopiedByValue)
{
    RigidTransformation2D rigid(1, 2, 0.5);
    RigidTransformation2D const copy = rigid;
    rigid.setRotation(2);
    EXPECT_EQ(copy.getRotation(), 0.5);
    EXPECT_EQ(copy.getRotationMatrix()(0, 0), std::cos(0.5));
    rigid = copy;
    EXPECT_EQ(rigid.getParam(2), 0.5);
    AffineTransformation2D affine(1, 2, 3, 4, 5, 6);
    AffineTransformation2D const other = affine;
    affine.setParam(3, 0);
    EXPECT_EQ(other.getParam(3), 4);
}

TEST(Transformations2D, mapARangeAsTheyMapEachPoint)
{
    ProjectiveTransformation2D const projective(1, 2, 3, 4, 5, 6, 0.5, 0.25);
    std::vector<Point> points;
    for (int i = 0; i < 7; ++i)
        points.emplace_back(i, 3.5 * i);
    std::vector<Point> images = points;
    Transformation2D const& base = projective;
    base.map(images.data(), images.data() + images.size());
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(images[i], mapped(base, points[i]));
    EXPECT_NO_THROW(base.map(static_cast<Point*>(nullptr), nullptr));
}

TEST(PolynomialTransformations2D, mapByTheirMonomials)
{
    std::vector<double> c(20);
    for (int i = 0; i < 20; ++i)
        c[i] = (i % 3 - 1) * (i + 1) / 8.0;
    double const x = 1.5, y = -2.5;
    auto const quadratic = [&](double const* p) {
        return p[0] + p[1] * x + p[2] * y + p[3] * x * x + p[4] * y * y + p[5] * x * y;
    };
    auto const cubic = [&](double const* p) {
        return quadratic(p) + p[6] * x * x * x + p[7] * y * y * y + p[8] * x * x * y + p[9] * x * y * y;
    };
    Point const third = mapped(PolynomialOrder3Transformation2D(c.data()), Point(x, y));
    EXPECT_DOUBLE_EQ(third[0], cubic(&c[0]));
    EXPECT_DOUBLE_EQ(third[1], cubic(&c[10]));
    Point const second = mapped(PolynomialOrder2Transformation2D(c.data()), Point(x, y));
    EXPECT_DOUBLE_EQ(second[0], quadratic(&c[0]));
    EXPECT_DOUBLE_EQ(second[1], quadratic(&c[6]));
    EXPECT_EQ(PolynomialOrder2Transformation2D::getNumOfParameter(), 12u);
    EXPECT_EQ(PolynomialOrder3Transformation2D::getNumOfParameter(), 20u);
}

TEST(PolynomialTransformations2D, reachOneCoefficientWithEachParameter)
{
    // Each monomial has its own value here, so that a coefficient tells where it stands.
    double const monomials[] = {1, 2, 3, 4, 9, 6, 8, 27, 12, 18};
    for (unsigned int i = 0; i < 20; ++i) {
        PolynomialOrder3Transformation2D third;
        third.setParam(i, 5);
        EXPECT_EQ(third.getParam(i), 5);
        EXPECT_EQ(mapped(third, Point(2, 3)), i < 10 ? Point(5 * monomials[i], 0) : Point(0, 5 * monomials[i - 10]));
    }
    for (unsigned int i = 0; i < 12; ++i) {
        PolynomialOrder2Transformation2D second;
        second.setParam(i, 5);
        EXPECT_EQ(second.getParam(i), 5);
        EXPECT_EQ(mapped(second, Point(2, 3)), i < 6 ? Point(5 * monomials[i], 0) : Point(0, 5 * monomials[i - 6]));
    }
}

TEST(PolynomialTransformations2D, refuseParametersThatTheyDoNotHave)
{
    PolynomialOrder2Transformation2D second;
    PolynomialOrder3Transformation2D third;
    EXPECT_QEL_THROW(second.getParam(12), BadIndex, "The transformation has no parameter 12.");
    EXPECT_QEL_THROW(second.setParam(12, 1), BadIndex, "The transformation has no parameter 12.");
    EXPECT_QEL_THROW(third.getParam(20), BadIndex, "The transformation has no parameter 20.");
}

TEST(PolynomialTransformations2D, sendAllPointsToTheOriginByDefaultAndAreCopiedByValue)
{
    EXPECT_EQ(mapped(PolynomialOrder2Transformation2D(), Point(2, 3)), Point(0, 0));
    EXPECT_EQ(mapped(PolynomialOrder3Transformation2D(), Point(2, 3)), Point(0, 0));
    PolynomialOrder2Transformation2D second;
    second.setParam(1, 2);
    PolynomialOrder2Transformation2D copy = second;
    second.setParam(1, 7);
    EXPECT_EQ(copy.getParam(1), 2);
    second = copy;
    std::vector<Point> points = {Point(1, 1), Point(-4, 2)};
    second.map(points.data(), points.data() + 2);
    EXPECT_EQ(points[0], Point(2, 0));
    EXPECT_EQ(points[1], Point(-8, 0));
}
