#include <qel/linear_filtering/kernel_factory.h>

#include "Core/private/Property.impl.h"
#include "Core/tests/Support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <tuple>

namespace qel::linear_filtering::kernel_factory {
namespace {

using kernel::Kernel2D;
using kernel::Kernel3D;
using Place = std::tuple<long, long, long>;
using Weights = std::map<Place, double>;

Place placeOf(kernel::Offset2D const& offset) { return {offset.x, offset.y, 0}; }
Place placeOf(kernel::Offset3D const& offset) { return {offset.x, offset.y, offset.z}; }

/// Each offset once.
template <class Kernel> Weights weightsOf(Kernel const& kernel)
{
    Weights weights;
    for (unsigned long i = 0; i < kernel.getNumOfPoints(); ++i)
        EXPECT_TRUE(weights.emplace(placeOf(kernel.getOffset(i)), kernel.getWeight(i)).second) << i;
    return weights;
}

template <class Kernel> double sumOf(Kernel const& kernel)
{
    double sum = 0;
    for (unsigned long i = 0; i < kernel.getNumOfPoints(); ++i)
        sum += kernel.getWeight(i);
    return sum;
}

/// weightOf(x, y, z) where it is not 0, around the origin.
template <class WeightOf> Weights around(long reach, bool isFlat, WeightOf const& weightOf)
{
    Weights weights;
    long const plans = isFlat ? 0 : reach;
    for (long z = -plans; z <= plans; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x)
                if (double const weight = weightOf(x, y, z); weight != 0)
                    weights[{x, y, z}] = weight;
    return weights;
}

long distance(long x, long y, long z) { return std::abs(x) + std::abs(y) + std::abs(z); }

double smooth(long coordinate) { return coordinate == 0 ? 2 : 1; }

TEST(KernelFactoryTest, laplaciansBalanceTheirNeighbours)
{
    auto const expected = [](bool isFlat, long differences, double centre) {
        return around(1, isFlat, [&](long x, long y, long z) {
            long const length = distance(x, y, z);
            return length == 0 ? centre : length <= differences ? 1.0 : 0.0;
        });
    };
    EXPECT_EQ(weightsOf(createNeighborhoodLaplacian2D(QEL_NEIGHBORHOOD2D_4)), expected(true, 1, -4));
    EXPECT_EQ(weightsOf(createNeighborhoodLaplacian2D(QEL_NEIGHBORHOOD2D_8)), expected(true, 2, -8));
    EXPECT_EQ(weightsOf(createNeighborhoodLaplacian3D(QEL_NEIGHBORHOOD3D_6)), expected(false, 1, -6));
    EXPECT_EQ(weightsOf(createNeighborhoodLaplacian3D(QEL_NEIGHBORHOOD3D_18)), expected(false, 2, -18));
    EXPECT_EQ(weightsOf(createNeighborhoodLaplacian3D(QEL_NEIGHBORHOOD3D_26)), expected(false, 3, -26));
    EXPECT_EQ(createNeighborhoodLaplacian2D(static_cast<Neighborhood2DType>(2)), Kernel2D());
    EXPECT_EQ(createNeighborhoodLaplacian3D(static_cast<Neighborhood3DType>(3)), Kernel3D());
    EXPECT_EQ(createNeighborhoodLaplacian3D(static_cast<Neighborhood3DType>(-1)), Kernel3D());
}

TEST(KernelFactoryTest, prewittsSubtractTheSideOfMinusOne)
{
    for (int direction = 0; direction < 3; ++direction) {
        auto const along = [&](long x, long y, long z) { return double(direction == 0 ? x : direction == 1 ? y : z); };
        EXPECT_EQ(weightsOf(createPrewitt3D(static_cast<KernelDirection3D>(direction))), around(1, false, along));
        if (direction < 2) {
            EXPECT_EQ(weightsOf(createPrewitt2D(static_cast<KernelDirection2D>(direction))), around(1, true, along));
        }
    }
    EXPECT_EQ(createPrewitt2D(static_cast<KernelDirection2D>(2)), Kernel2D());
    EXPECT_EQ(createPrewitt3D(static_cast<KernelDirection3D>(3)), Kernel3D());
    EXPECT_EQ(createPrewitt3D(static_cast<KernelDirection3D>(-1)), Kernel3D());
}

TEST(KernelFactoryTest, sobelsSmoothTheirSides)
{
    EXPECT_EQ(weightsOf(createSobel2D(QEL_KERNEL_DIRECTION2D_X)),
              around(1, true, [](long x, long y, long) { return double(x) * smooth(y); }));
    EXPECT_EQ(weightsOf(createSobel2D(QEL_KERNEL_DIRECTION2D_Y)),
              around(1, true, [](long x, long y, long) { return double(y) * smooth(x); }));
    EXPECT_EQ(weightsOf(createSobel3D(QEL_KERNEL_DIRECTION3D_X)),
              around(1, false, [](long x, long y, long z) { return double(x) * smooth(y) * smooth(z); }));
    EXPECT_EQ(weightsOf(createSobel3D(QEL_KERNEL_DIRECTION3D_Y)),
              around(1, false, [](long x, long y, long z) { return double(y) * smooth(x) * smooth(z); }));
    Kernel3D const last = createSobel3D(QEL_KERNEL_DIRECTION3D_Z);
    EXPECT_EQ(last.getNumOfPoints(), 18u);
    EXPECT_EQ(weightsOf(last),
              around(1, false, [](long x, long y, long z) { return double(z) * smooth(x) * smooth(y); }));
    EXPECT_EQ(createSobel2D(static_cast<KernelDirection2D>(2)), Kernel2D());
}

TEST(KernelFactoryTest, normalizingASobelDividesByTheSumOfMagnitudes)
{
    Kernel2D sobel = createSobel2D(QEL_KERNEL_DIRECTION2D_X);
    sobel.normalize();
    EXPECT_EQ(weightsOf(sobel), around(1, true, [](long x, long y, long) { return double(x) * smooth(y) / 8; }));
}

TEST(KernelFactoryTest, gaussianLinesSampleTheNormalDistribution)
{
    double const sigma = 1.7;
    auto const density = [&](long i) {
        return std::exp(-double(i * i) / (2 * sigma * sigma)) / (sigma * std::sqrt(2 * M_PI));
    };
    auto const check = [&](auto const& kernel, int axis) {
        ASSERT_EQ(kernel.getNumOfPoints(), 13u);
        for (long i = -6; i <= 6; ++i) {
            Place const place = placeOf(kernel.getOffset(static_cast<unsigned long>(i + 6)));
            EXPECT_EQ(place, Place(axis == 0 ? i : 0, axis == 1 ? i : 0, axis == 2 ? i : 0));
            EXPECT_DOUBLE_EQ(kernel.getWeight(static_cast<unsigned long>(i + 6)), density(i));
        }
    };
    check(createGaussian1D(13, sigma, QEL_KERNEL_DIRECTION2D_X), 0);
    check(createGaussian1D(13, sigma, QEL_KERNEL_DIRECTION2D_Y), 1);
    check(createGaussian1D(13, sigma, QEL_KERNEL_DIRECTION3D_X), 0);
    check(createGaussian1D(13, sigma, QEL_KERNEL_DIRECTION3D_Y), 1);
    check(createGaussian1D(13, sigma, QEL_KERNEL_DIRECTION3D_Z), 2);
    EXPECT_NEAR(sumOf(createGaussian1D(21, sigma, QEL_KERNEL_DIRECTION2D_X)), 1, 1e-6);
    EXPECT_EQ(createGaussian1D(1, sigma, QEL_KERNEL_DIRECTION2D_X).getNumOfPoints(), 1u);
    EXPECT_TRUE(std::isnan(createGaussian1D(1, 0, QEL_KERNEL_DIRECTION2D_X).getWeight(0)));
}

TEST(KernelFactoryTest, gaussianSquaresAndCubesAreProductsOfLines)
{
    double const sigma = 0.9;
    auto const density = [&](long i) {
        return std::exp(-double(i * i) / (2 * sigma * sigma)) / (sigma * std::sqrt(2 * M_PI));
    };
    Kernel2D const square = createGaussian2D(5, sigma);
    ASSERT_EQ(square.getNumOfPoints(), 25u);
    for (auto const& [place, weight] : weightsOf(square)) {
        auto const [x, y, z] = place;
        EXPECT_LE(std::max(std::abs(x), std::abs(y)), 2);
        EXPECT_DOUBLE_EQ(weight, density(x) * density(y));
    }
    Kernel3D const cube = createGaussian3D(5, sigma);
    ASSERT_EQ(cube.getNumOfPoints(), 125u);
    for (auto const& [place, weight] : weightsOf(cube)) {
        auto const [x, y, z] = place;
        EXPECT_LE(std::max({std::abs(x), std::abs(y), std::abs(z)}), 2);
        EXPECT_NEAR(weight, density(x) * density(y) * density(z), 1e-15);
    }
}

TEST(KernelFactoryTest, linearBoxesAreSymmetricLines)
{
    EXPECT_EQ(weightsOf(createLinearBoxFilter2D(0, 5)),
              around(2, true, [](long, long y, long) { return y == 0 ? 1.0 : 0.0; }));
    EXPECT_EQ(weightsOf(createLinearBoxFilter2D(90, 7)),
              around(3, true, [](long x, long, long) { return x == 0 ? 1.0 : 0.0; }));
    EXPECT_EQ(weightsOf(createLinearBoxFilter2D(-45, 3)),
              around(1, true, [](long x, long y, long) { return x == -y ? 1.0 : 0.0; }));
    EXPECT_EQ(weightsOf(createLinearBoxFilter3D(0, 0, 5)),
              around(2, false, [](long x, long y, long) { return x == 0 && y == 0 ? 1.0 : 0.0; }));
    EXPECT_EQ(weightsOf(createLinearBoxFilter3D(90, 90, 5)),
              around(2, false, [](long x, long, long z) { return x == 0 && z == 0 ? 1.0 : 0.0; }));
    EXPECT_EQ(weightsOf(createLinearBoxFilter3D(0, 45, 3)),
              around(1, false, [](long x, long y, long z) { return x == z && y == 0 ? 1.0 : 0.0; }));
    for (int angle = -200; angle < 200; angle += 13)
        for (unsigned long size = 1; size < 12; size += 2) {
            EXPECT_EQ(weightsOf(createLinearBoxFilter2D(angle, size)).size(), size);
            EXPECT_EQ(weightsOf(createLinearBoxFilter3D(angle, 33, size)).size(), size);
        }
    EXPECT_EQ(createLinearBoxFilter2D(10, 1).getNumOfPoints(), 1u);
}

TEST(KernelFactoryTest, evenSizesAndUnknownDirectionsGiveEmptyKernels)
{
    for (unsigned long const size : {0ul, 2ul, 4ul}) {
        EXPECT_EQ(createGaussian1D(size, 1, QEL_KERNEL_DIRECTION2D_X), Kernel2D());
        EXPECT_EQ(createGaussian1D(size, 1, QEL_KERNEL_DIRECTION3D_Z), Kernel3D());
        EXPECT_EQ(createGaussian2D(size, 1), Kernel2D());
        EXPECT_EQ(createGaussian3D(size, 1), Kernel3D());
        EXPECT_EQ(createLinearBoxFilter2D(30, size), Kernel2D());
        EXPECT_EQ(createLinearBoxFilter3D(30, 40, size), Kernel3D());
    }
    EXPECT_EQ(createGaussian1D(3, 1, static_cast<KernelDirection2D>(2)), Kernel2D());
    EXPECT_EQ(createGaussian1D(3, 1, static_cast<KernelDirection3D>(3)), Kernel3D());
}

TEST(KernelFactoryTest, writesKernelsAsPropertiesReadThem)
{
    Kernel2D flat;
    EXPECT_EQ(kernel2DToString(flat), String("@kernel2D:"));
    flat.addPoint(0, 0, 1);
    flat.addPoint(1, 0, 0.5);
    EXPECT_EQ(kernel2DToString(flat), String("@kernel2D:0_0_1+1_0_0.5"));
    flat.addPoint(-3, 12, -1e300);
    flat.addPoint(-3, 12, 1e-7);
    EXPECT_EQ(kernel2DToString(flat), String("@kernel2D:0_0_1+1_0_0.5+-3_12_-1e300+-3_12_1e-07"));
    Kernel3D solid;
    EXPECT_EQ(kernel3DToString(solid), String("@kernel3D:"));
    solid.addPoint(1, -2, 3, 0.1);
    solid.addPoint(0, 0, 0, 1e23);
    EXPECT_EQ(kernel3DToString(solid), String("@kernel3D:1_-2_3_0.1+0_0_0_1e23"));
}

TEST(KernelFactoryTest, writesKernelsAlikeInEveryLocale)
{
    test::ForeignLocale const locale;
    Kernel2D kernel;
    kernel.addPoint(12345, 0, 1234.5);
    EXPECT_EQ(kernel2DToString(kernel), String("@kernel2D:12345_0_1234.5"));
}

TEST(KernelFactoryTest, textKeepsEveryBitOfAWeight)
{
    using Limits = std::numeric_limits<double>;
    std::mt19937_64 random(3);
    Kernel2D kernel;
    for (double const weight : {0.0, -0.0, 1.0 / 3, Limits::max(), -Limits::max(), Limits::min(), Limits::denorm_min(),
                                Limits::epsilon(), 100000.0, 1e22})
        kernel.addPoint(std::numeric_limits<long>::min(), std::numeric_limits<long>::max(), weight);
    for (int i = 0; i < 2000; ++i) {
        double const weight = std::bit_cast<double>(random());
        if (std::isfinite(weight))
            kernel.addPoint(i, -i, weight);
    }
    Property<Kernel2D> property;
    String rest;
    ASSERT_TRUE(property.read(kernel2DToString(kernel), rest));
    Kernel2D const read = property.get();
    ASSERT_EQ(read, kernel);
    for (unsigned long i = 0; i < read.getNumOfPoints(); ++i)
        ASSERT_EQ(std::bit_cast<std::uint64_t>(read.getWeight(i)), std::bit_cast<std::uint64_t>(kernel.getWeight(i)));
    Kernel3D const cube = createGaussian3D(5, 1.3);
    Property<Kernel3D> cubeProperty;
    ASSERT_TRUE(cubeProperty.read(kernel3DToString(cube), rest));
    EXPECT_EQ(cubeProperty.get(), cube);
}

} // namespace
} // namespace qel::linear_filtering::kernel_factory
