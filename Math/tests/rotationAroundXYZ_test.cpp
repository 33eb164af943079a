#include <gtest/gtest.h>

#include <qel/math/rotationAroundXYZ.h>

#include <cmath>

using qel::math::Matrix3;
using qel::math::rotationAroundXYZ;

namespace {

Matrix3<double> product(Matrix3<double> const& a, Matrix3<double> const& b)
{
    Matrix3<double> result;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                result(i, j) += a(i, k) * b(k, j);
    return result;
}

void expectNear(Matrix3<double> const& a, Matrix3<double> const& b)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(a(i, j), b(i, j), 1e-15) << i << " " << j;
}

} // namespace

TEST(RotationAroundXYZ, turnsAroundXFirstAndZLast)
{
    double const rx = 0.3, ry = -1.1, rz = 2.5;
    auto const c = [](double angle) { return std::cos(angle); };
    auto const s = [](double angle) { return std::sin(angle); };
    Matrix3<double> const x(1, 0, 0, 0, c(rx), -s(rx), 0, s(rx), c(rx));
    Matrix3<double> const y(c(ry), 0, s(ry), 0, 1, 0, -s(ry), 0, c(ry));
    Matrix3<double> const z(c(rz), -s(rz), 0, s(rz), c(rz), 0, 0, 0, 1);
    Matrix3<double> m(9, 9, 9, 9, 9, 9, 9, 9, 9);
    rotationAroundXYZ(rx, ry, rz, m);
    expectNear(m, product(z, product(y, x)));
    rotationAroundXYZ(rx, 0, 0, m);
    expectNear(m, x);
    rotationAroundXYZ(0, ry, 0, m);
    expectNear(m, y);
    rotationAroundXYZ(0, 0, rz, m);
    expectNear(m, z);
}

TEST(RotationAroundXYZ, isTheIdentityWithoutAngles)
{
    Matrix3<double> m;
    rotationAroundXYZ(0, 0, 0, m);
    expectNear(m, Matrix3<double>(1, 0, 0, 0, 1, 0, 0, 0, 1));
}
