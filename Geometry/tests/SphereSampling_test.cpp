#include <qel/geometry/SphereSampling.h>

#include "Core/tests/Support/Algorithms.h"

#include <qel/math/Vector3.h>

#include <cmath>
#include <numbers>
#include <numeric>

namespace qel::test {
namespace {

using geometry::HALF_SPHERE;
using geometry::SamplingMode;
using geometry::SPHERE;
using geometry::SphereSampling;
using Directions = container::Vector<math::Vector2<double>>;
using Axis = math::Vector3<double>;

double const pi = std::numbers::pi;

std::vector<unsigned int> allSizes()
{
    std::vector<unsigned int> sizes(100);
    std::iota(sizes.begin(), sizes.end(), 1U);
    for (unsigned int size : {150, 200, 250, 300, 350, 400, 450, 500, 600, 700, 800, 900, 1000, 1500, 2000, 2500, 3000})
        sizes.push_back(size);
    return sizes;
}

Axis axisOf(math::Vector2<double> const& angles)
{
    return {std::sin(angles[0]) * std::cos(angles[1]), std::sin(angles[0]) * std::sin(angles[1]), std::cos(angles[0])};
}

std::vector<Axis> axesOf(Directions const& directions)
{
    std::vector<Axis> axes;
    for (auto const& angles : directions)
        axes.push_back(axisOf(angles));
    return axes;
}

double leastAngle(std::vector<Axis> const& axes)
{
    double closest = 0;
    for (std::size_t i = 0; i < axes.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            closest = std::max(closest, std::fabs(axes[i].dot(axes[j])));
    return std::acos(std::min(closest, 1.0));
}

/// No 2n points on a sphere are farther apart, L. Fejes Toth, "Ueber die Abschaetzung des kuerzesten Abstandes zweier
/// Punkte eines auf einer Kugelflaeche liegenden Punktsystems", 1943.
double boundOf(unsigned int numOfAxes)
{
    double const points = 2.0 * numOfAxes;
    double const cotangent = 1 / std::tan(points / (points - 2) * pi / 6);
    return std::acos((cotangent * cotangent - 1) / 2);
}

class SphereSamplingTest : public testing::Test
{
protected:
    Directions sample(unsigned int wanted, SamplingMode mode)
    {
        Directions directions(3);
        sampling->nbDesiredSamples = wanted;
        sampling->samplingMode = mode;
        sampling->directionSamplesVec = &directions;
        sampling->run();
        return directions;
    }

    Ref<SphereSampling> sampling = SphereSampling::New();
    std::string const name = "SphereSampling";
};

TEST_F(SphereSamplingTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(AlgoInfo::fromName("SphereSampling"), SphereSampling::getClassInfo());
    EXPECT_EQ(levelsOf(*sampling), std::vector<OptimLevelType>{SCALAR});
    EXPECT_TRUE(hasNoBorder(*sampling));
}

TEST_F(SphereSamplingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(sampling->getNumOfInputProperties(), 2UL);
    EXPECT_EQ(sampling->getInputProperty(0), &sampling->nbDesiredSamples);
    EXPECT_EQ(sampling->getInputProperty(1), &sampling->samplingMode);
    EXPECT_EQ(sampling->getNumOfOutputProperties(), 1UL);
    EXPECT_EQ(sampling->getOutputProperty(0), &sampling->directionSamplesVec);
    EXPECT_EQ(sampling->nbDesiredSamples.getName(), "nbDesiredSamples");
    EXPECT_EQ(sampling->samplingMode.getName(), "samplingMode");
    EXPECT_EQ(sampling->directionSamplesVec.getName(), "directionSamplesVec");
    EXPECT_EQ(sampling->nbDesiredSamples, 100U);
    EXPECT_EQ(sampling->samplingMode, SPHERE);
    EXPECT_EQ(sampling->directionSamplesVec.get(), nullptr);
    EnumInfo const& modes = *sampling->samplingMode.getEnumInfo();
    EXPECT_EQ(modes.getEnumName(), "SamplingMode");
    EXPECT_EQ(modes.getNumOfLabels(), 2UL);
    EXPECT_EQ(modes.getLabelFromValue(0), "SPHERE");
    EXPECT_EQ(modes.getLabelFromValue(1), "HALF_SPHERE");
}

TEST_F(SphereSamplingTest, takesTheNextLargerSet)
{
    unsigned int smaller = 0;
    for (unsigned int const size : allSizes()) {
        for (unsigned int const wanted : {smaller + 1, size}) {
            EXPECT_EQ(sample(wanted, HALF_SPHERE).size(), size);
            EXPECT_EQ(sample(2 * wanted, SPHERE).size(), 2 * size);
            EXPECT_EQ(sample(2 * wanted + 1, SPHERE).size(), 2 * size);
        }
        smaller = size;
    }
    EXPECT_EQ(sample(100, SPHERE).size(), 100UL);
    EXPECT_EQ(sample(101, SPHERE).size(), 100UL);
    EXPECT_EQ(sample(5000, HALF_SPHERE).size(), 3000UL);
    EXPECT_EQ(sample(~0U, HALF_SPHERE).size(), 3000UL);
    EXPECT_EQ(sample(~0U, SPHERE).size(), 6000UL);
}

TEST_F(SphereSamplingTest, beginsWithThePole)
{
    auto const half = sample(1, HALF_SPHERE);
    ASSERT_EQ(half.size(), 1UL);
    EXPECT_EQ(half[0], (math::Vector2<double>(0, 0)));
    for (unsigned int const wanted : {1U, 2U, 3U}) {
        auto const whole = sample(wanted, SPHERE);
        ASSERT_EQ(whole.size(), 2UL);
        EXPECT_EQ(whole[0], (math::Vector2<double>(0, 0)));
        EXPECT_EQ(whole[1], (math::Vector2<double>(pi, pi)));
    }
}

TEST_F(SphereSamplingTest, hasAnOrthogonalFrameForThree)
{
    auto const frame = sample(3, HALF_SPHERE);
    ASSERT_EQ(frame.size(), 3UL);
    EXPECT_EQ(frame[0], (math::Vector2<double>(0.949692F, 0.793502F)));
    EXPECT_NEAR(leastAngle(axesOf(frame)), pi / 2, 1e-6);
}

TEST_F(SphereSamplingTest, givesBothEndsOfEachAxis)
{
    for (unsigned int const size : allSizes()) {
        auto const half = sample(size, HALF_SPHERE);
        auto const whole = sample(2 * size, SPHERE);
        ASSERT_EQ(whole.size(), 2 * half.size());
        for (unsigned long i = 0; i < half.size(); ++i) {
            double const phi = half[i][0];
            double const theta = half[i][1];
            EXPECT_EQ(whole[2 * i], half[i]);
            EXPECT_EQ(whole[2 * i + 1], (math::Vector2<double>(pi - phi, theta > 0 ? theta - pi : theta + pi)));
            EXPECT_NEAR((axisOf(whole[2 * i]) + axisOf(whole[2 * i + 1])).length(), 0, 1e-15);
        }
    }
}

TEST_F(SphereSamplingTest, staysOnTheHalfSphereWithFloatAngles)
{
    for (unsigned int const size : allSizes()) {
        for (auto const& angles : sample(size, HALF_SPHERE)) {
            EXPECT_TRUE(angles[0] >= 0 && angles[0] <= pi / 2);
            EXPECT_TRUE(angles[1] > -pi && angles[1] <= pi);
            EXPECT_EQ(angles[0], static_cast<float>(angles[0]));
            EXPECT_EQ(angles[1], static_cast<float>(angles[1]));
        }
    }
}

/// The largest least angles that are known, in degrees: J. H. Conway, R. H. Hardin, N. J. A. Sloane, "Packing lines,
/// planes, etc.: packings in Grassmannian spaces", Experimental Mathematics 5:139-159, 1996.
TEST_F(SphereSamplingTest, comesCloseToTheBestKnownPackings)
{
    double const best[] = {90,      90,      70.5288, 63.4349, 63.4349, 54.7356, 49.6399, 47.9821, 46.6746,
                           44.4031, 41.8820, 39.8131, 38.6824, 38.1349, 37.3774, 35.2353, 34.4088};
    for (unsigned int size = 2; size <= 18; ++size) {
        double const angle = leastAngle(axesOf(sample(size, HALF_SPHERE))) * 180 / pi;
        EXPECT_GE(angle, 0.99 * best[size - 2]) << size;
        EXPECT_LE(angle, best[size - 2] + 1e-3) << size;
    }
}

TEST_F(SphereSamplingTest, keepsAxesApartAsFarAsTheBoundAllows)
{
    for (unsigned int const size : allSizes()) {
        if (size < 3)
            continue;
        EXPECT_GE(leastAngle(axesOf(sample(size, HALF_SPHERE))), 0.9 * boundOf(size)) << size;
    }
}

/// No direction is farther from its nearest axis than two axes are from each other: there is no hole for another one.
TEST_F(SphereSamplingTest, leavesNoHoles)
{
    for (unsigned int const size : allSizes()) {
        if (size < 2 || (size > 50 && size % 500 != 0))
            continue;
        auto const axes = axesOf(sample(size, HALF_SPHERE));
        double const furthest = std::cos(leastAngle(axes));
        // A spiral of directions, much denser than the axes.
        int const numOfDirections = 2000;
        for (int i = 0; i < numOfDirections; ++i) {
            double const z = (i + 0.5) / numOfDirections;
            Axis const direction(std::sqrt(1 - z * z) * std::cos(2.4 * i), std::sqrt(1 - z * z) * std::sin(2.4 * i), z);
            double nearest = 0;
            for (Axis const& axis : axes)
                nearest = std::max(nearest, std::fabs(axis.dot(direction)));
            ASSERT_GE(nearest, furthest - 1e-6) << size;
        }
    }
}

/// The mean of the products of their coordinates is that of the whole sphere, but for about the weight of an axis or
/// two.
TEST_F(SphereSamplingTest, prefersNoDirection)
{
    for (unsigned int const size : allSizes()) {
        double moments[3][3] = {};
        for (Axis const& axis : axesOf(sample(size, HALF_SPHERE)))
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j)
                    moments[i][j] += axis[i] * axis[j];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                EXPECT_NEAR(moments[i][j], i == j ? size / 3.0 : 0.0, 3.0) << size;
    }
}

TEST_F(SphereSamplingTest, holdsDistinctSets)
{
    // Sizes follow each other in the tables; a wrong offset would repeat a part of a neighbouring set.
    for (unsigned int size = 4; size < 100; ++size) {
        auto const set = sample(size, HALF_SPHERE);
        auto const next = sample(size + 1, HALF_SPHERE);
        EXPECT_NE(set[size - 1], next[size]) << size;
        EXPECT_NE(set[0], next[0]) << size;
    }
}

TEST_F(SphereSamplingTest, refusesWrongParametersInTheRulesWords)
{
    Directions directions(3);
    sampling->directionSamplesVec = &directions;
    sampling->nbDesiredSamples = 0;
    EXPECT_QEL_WHAT(
        sampling->run(), RuleException,
        ruleText("The parameter \"nbDesiredSamples\" must be strictly positive.", "nbDesiredSamples", name));
    sampling->nbDesiredSamples = 1;
    sampling->samplingMode = 2;
    EXPECT_THROW(sampling->run(), RuleException);
    EXPECT_EQ(directions.size(), 3UL);
    sampling->samplingMode = SPHERE;
    sampling->directionSamplesVec = nullptr;
    EXPECT_QEL_WHAT(sampling->run(), RuleException,
                    ruleText("The parameter \"directionSamplesVec\" must be set.", "directionSamplesVec", name));
}

} // namespace
} // namespace qel::test
