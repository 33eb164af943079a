#include <gtest/gtest.h>

#include <type_traits>

#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>

using namespace qel::math;

namespace {

template <class T> class MathMatrix : public testing::Test
{};

} // namespace

using Components = testing::Types<float, double>;
TYPED_TEST_SUITE(MathMatrix, Components);

static_assert(std::is_constructible_v<Matrix2<double>, int, int, int, int>);
static_assert(!std::is_constructible_v<Matrix2<double>, int, int, int>);
static_assert(std::is_constructible_v<Matrix3<double>, int, int, int, int, int, int, int, int, int>);
static_assert(std::is_trivially_copyable_v<Matrix3<float>>);

TYPED_TEST(MathMatrix, isZeroByDefault)
{
    Matrix2<TypeParam> const two;
    Matrix3<TypeParam> const three;
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column)
            EXPECT_EQ(two(row, column), TypeParam(0));
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(three(row, column), TypeParam(0));
}

TYPED_TEST(MathMatrix, keepsItsElementsRowByRow)
{
    Matrix2<TypeParam> const two(1, 2, 3, 4);
    Matrix3<TypeParam> const three(1, 2, 3, 4, 5, 6, 7, 8, 9);
    TypeParam number = 1;
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column)
            EXPECT_EQ(two(row, column), number++);
    number = 1;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(three(row, column), number++);
}

TYPED_TEST(MathMatrix, changesASingleElement)
{
    Matrix2<TypeParam> two(1, 2, 3, 4);
    two(0, 1) = 9;
    EXPECT_EQ(two(0, 1), TypeParam(9));
    EXPECT_EQ(two(1, 0), TypeParam(3));
    Matrix3<TypeParam> three;
    three(2, 0) = 9;
    EXPECT_EQ(three(2, 0), TypeParam(9));
    EXPECT_EQ(three(0, 2), TypeParam(0));
}

TYPED_TEST(MathMatrix, fillsAnArrayInRowOrder)
{
    Matrix3<TypeParam> const three(1, 2, 3, 4, 5, 6, 7, 8, 9);
    TypeParam elements[10] = {};
    elements[9] = 77;
    three.fill(elements);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(elements[i], TypeParam(i + 1));
    EXPECT_EQ(elements[9], TypeParam(77));
}
