#include "Core/private/Kernel/KernelPrivate.h"
#include "Core/private/Property.impl.h"

#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace qel::test {
namespace {

using kernel::Kernel2D;
using kernel::Kernel3D;
using kernel::Offset2D;
using kernel::Offset3D;

template <class Kernel> constexpr bool isFlat = std::is_same_v<Kernel, Kernel2D>;

template <class Kernel> void addPoint(Kernel& kernel, long x, long y, double weight)
{
    if constexpr (isFlat<Kernel>)
        kernel.addPoint(x, y, weight);
    else
        kernel.addPoint(x, y, x - y, weight);
}

template <class Kernel> auto offsetOf(long x, long y)
{
    if constexpr (isFlat<Kernel>)
        return Offset2D{x, y};
    else
        return Offset3D{x, y, x - y};
}

/// Three points, of which two have one offset.
template <class Kernel> Kernel exampleOf()
{
    Kernel kernel;
    addPoint(kernel, -1, 2, 0.5);
    addPoint(kernel, 3, 0, -4);
    addPoint(kernel, -1, 2, 1.5);
    return kernel;
}

template <class Kernel> class KernelTest : public testing::Test
{};
using KernelTypes = testing::Types<Kernel2D, Kernel3D>;
TYPED_TEST_SUITE(KernelTest, KernelTypes);

TYPED_TEST(KernelTest, startsEmpty)
{
    TypeParam kernel;
    EXPECT_EQ(kernel.getNumOfPoints(), 0u);
    kernel.normalize();
    kernel.applyScale(2);
    EXPECT_EQ(kernel.getNumOfPoints(), 0u);
}

TYPED_TEST(KernelTest, keepsPointsInTheirOrderAndRepeatedOnesApart)
{
    auto const kernel = exampleOf<TypeParam>();
    ASSERT_EQ(kernel.getNumOfPoints(), 3u);
    EXPECT_EQ(kernel.getOffset(0), offsetOf<TypeParam>(-1, 2));
    EXPECT_EQ(kernel.getOffset(1), offsetOf<TypeParam>(3, 0));
    EXPECT_EQ(kernel.getOffset(2), offsetOf<TypeParam>(-1, 2));
    EXPECT_EQ(kernel.getWeight(0), 0.5);
    EXPECT_EQ(kernel.getWeight(1), -4.0);
    EXPECT_EQ(kernel.getWeight(2), 1.5);
    EXPECT_EQ(kernel.getPrivate().offsets.size(), 3u);
    EXPECT_EQ(kernel.getPrivate().weights.size(), 3u);
}

TYPED_TEST(KernelTest, isAValue)
{
    auto const kernel = exampleOf<TypeParam>();
    TypeParam copy(kernel);
    EXPECT_EQ(copy, kernel);
    addPoint(copy, 0, 0, 1);
    EXPECT_EQ(kernel.getNumOfPoints(), 3u);
    EXPECT_NE(copy, kernel);
    TypeParam assigned;
    assigned = copy;
    EXPECT_EQ(assigned, copy);
    copy.clear();
    EXPECT_EQ(copy.getNumOfPoints(), 0u);
    EXPECT_EQ(copy, TypeParam());
    EXPECT_EQ(assigned.getNumOfPoints(), 4u);
    TypeParam const& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.getNumOfPoints(), 4u);
}

TYPED_TEST(KernelTest, differsInOrderWeightAndOffset)
{
    TypeParam one, other;
    addPoint(one, 1, 0, 1);
    addPoint(other, 1, 0, 2);
    EXPECT_NE(one, other);
    other.clear();
    addPoint(other, 0, 1, 1);
    EXPECT_NE(one, other);
    addPoint(one, 0, 1, 1);
    addPoint(other, 1, 0, 1);
    EXPECT_NE(one, other);
}

TYPED_TEST(KernelTest, scalesEveryWeight)
{
    auto kernel = exampleOf<TypeParam>();
    kernel.applyScale(-2);
    EXPECT_EQ(kernel.getWeight(0), -1.0);
    EXPECT_EQ(kernel.getWeight(1), 8.0);
    EXPECT_EQ(kernel.getWeight(2), -3.0);
    EXPECT_EQ(kernel.getOffset(1), offsetOf<TypeParam>(3, 0));
}

TYPED_TEST(KernelTest, normalizesByTheSumOfAbsoluteWeights)
{
    auto kernel = exampleOf<TypeParam>();
    kernel.normalize();
    EXPECT_EQ(kernel.getWeight(0), 0.5 / 6);
    EXPECT_EQ(kernel.getWeight(1), -4.0 / 6);
    EXPECT_EQ(kernel.getWeight(2), 1.5 / 6);
}

TYPED_TEST(KernelTest, dividesByASumOfZeroUnchecked)
{
    TypeParam kernel;
    addPoint(kernel, 0, 0, 0);
    kernel.normalize();
    EXPECT_TRUE(std::isnan(kernel.getWeight(0)));
}

TYPED_TEST(KernelTest, isAProperty)
{
    Property<TypeParam> property;
    EXPECT_EQ(property.get(), TypeParam());
    auto const kernel = exampleOf<TypeParam>();
    property = kernel;
    EXPECT_EQ(property.get(), kernel);
    Property<TypeParam> other;
    other = property;
    EXPECT_EQ(static_cast<TypeParam>(other), kernel);
    other.lock(true);
    other = TypeParam();
    String rest;
    EXPECT_FALSE(other.read(isFlat<TypeParam> ? "@kernel2D:0_0_1" : "@kernel3D:0_0_0_1", rest));
    EXPECT_EQ(other.get(), kernel);
}

TYPED_TEST(KernelTest, isReadFromText)
{
    Property<TypeParam> property;
    property = exampleOf<TypeParam>();
    String rest;
    String const text =
        isFlat<TypeParam> ? "@kernel2D:0_0_1+1_-2_0.5+1_-2_-1e-3" : "@kernel3D:0_0_0_1+1_-2_3_0.5+1_-2_3_-1e-3";
    EXPECT_TRUE(property.read(text, rest));
    EXPECT_EQ(rest, text);
    TypeParam expected;
    addPoint(expected, 0, 0, 1);
    addPoint(expected, 1, -2, 0.5);
    addPoint(expected, 1, -2, -0.001);
    EXPECT_EQ(property.get(), expected);
}

} // namespace
} // namespace qel::test
