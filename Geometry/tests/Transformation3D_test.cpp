#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Translation3D.h>
#include <qel/math/rotationAroundXYZ.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace qel;
using namespace qel::geometry;

namespace {

using Point = math::Vector3<double>;

Point mapped(Transformation3D const& transformation, Point point)
{
    transformation.map(point);
    return point;
}

void expectNear(Point const& a, Point const& b)
{
    EXPECT_LT((a - b).length(), 1e-13) << a[0] << " " << a[1] << " " << a[2];
}

} // namespace

TEST(Transformations3D, mapEveryPointToItselfByDefault)
{
    Point const point(3.25, -7.5, 11);
    EXPECT_EQ(mapped(Translation3D(), point), point);
    EXPECT_EQ(mapped(RigidTransformation3D(), point), point);
    EXPECT_EQ(mapped(AffineTransformation3D(), point), point);
}

TEST(Transformations3D, tellHowManyParametersTheyCount)
{
    EXPECT_EQ(Translation3D::getNumOfParameter(), 3u);
    EXPECT_EQ(RigidTransformation3D::getNumOfParameter(), 5u);
    EXPECT_EQ(AffineTransformation3D::getNumOfParameter(), 12u);
}

TEST(Transformations3D, translate)
{
    EXPECT_EQ(mapped(Translation3D(1, 2, 3), Point(10, 20, 30)), Point(11, 22, 33));
    Translation3D shift(Point(4, 5, 6));
    EXPECT_EQ(shift.getTranslation(), Point(4, 5, 6));
    shift.setTranslation(Point(-1, 0, 1));
    EXPECT_EQ(mapped(shift, Point(0, 0, 0)), Point(-1, 0, 1));
}

TEST(Transformations3D, takeAnglesInDegrees)
{
    expectNear(mapped(RigidTransformation3D(Point(0, 0, 1), 90, 0, 0), Point(1, 2, 3)), Point(1, -3, 3));
    expectNear(mapped(RigidTransformation3D(Point(0, 0, 1), 0, 90, 0), Point(1, 2, 3)), Point(3, 2, 0));
    expectNear(mapped(RigidTransformation3D(Point(0, 0, 1), 0, 0, 90), Point(1, 2, 3)), Point(-2, 1, 4));
    // Around X, then Y, then Z.
    expectNear(mapped(RigidTransformation3D(Point(0, 0, 0), 90, 90, 0), Point(1, 2, 3)), Point(2, -3, -1));
    RigidTransformation3D rigid;
    rigid.setTranslation(Point(7, 8, 9));
    rigid.setRotations(10, 20, 30);
    math::Matrix3<double> expected;
    math::rotationAroundXYZ(10 * (M_PI / 180.0), 20 * (M_PI / 180.0), 30 * (M_PI / 180.0), expected);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(rigid.getRotationMatrix()(i, j), expected(i, j));
    EXPECT_EQ(rigid.getTranslation(), Point(7, 8, 9));
}

TEST(Transformations3D, applyAMatrixThenTranslate)
{
    math::Matrix3<double> const matrix(1, 2, 3, 4, 5, 6, 7, 8, 10);
    AffineTransformation3D affine(Point(-1, -2, -3), matrix);
    EXPECT_EQ(mapped(affine, Point(1, 10, 100)), Point(320, 652, 1084));
    affine.setRotationMatrix(math::Matrix3<double>(0, 1, 0, 0, 0, 1, 1, 0, 0));
    EXPECT_EQ(affine.getRotationMatrix()(2, 0), 1);
    EXPECT_EQ(mapped(affine, Point(1, 10, 100)), Point(9, 98, -2));
}

TEST(Transformations3D, mapARangeAsTheyMapEachPoint)
{
    RigidTransformation3D const rigid(Point(1, 2, 3), 11, 22, 33);
    Transformation3D const& base = rigid;
    std::vector<Point> points;
    for (int i = 0; i < 5; ++i)
        points.emplace_back(i, 2 - i, i * i);
    std::vector<Point> images = points;
    base.map(images.data(), images.data() + images.size());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(images[i], mapped(base, points[i]));
    EXPECT_NO_THROW(base.map(static_cast<Point*>(nullptr), nullptr));
}

TEST(Transformations3D, areCopiedByValue)
{
    RigidTransformation3D rigid(Point(1, 2, 3), 11, 22, 33);
    RigidTransformation3D copy = rigid;
    Point const image = mapped(rigid, Point(1, 1, 1));
    rigid.setRotations(0, 0, 0);
    EXPECT_EQ(mapped(copy, Point(1, 1, 1)), image);
    rigid = copy;
    EXPECT_EQ(mapped(rigid, Point(1, 1, 1)), image);
}
