#include "Classification/private/textonDirections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>
#include <vector>

using namespace qel::classification;
using testing::ElementsAre;

namespace {

using Step2 = std::pair<int, int>;
using Step3 = std::tuple<int, int, int>;

std::vector<Step2> steps2D(TextonShape shape, unsigned int size, unsigned int radius = 5)
{
    std::vector<Step2> steps;
    for (auto const& step : textonDirections2D(shape, size, radius))
        steps.emplace_back(step[0], step[1]);
    return steps;
}

std::vector<Step3> steps3D(TextonShape shape, unsigned int size, unsigned int radius = 5)
{
    std::vector<Step3> steps;
    for (auto const& step : textonDirections3D(shape, size, radius))
        steps.emplace_back(step[0], step[1], step[2]);
    return steps;
}

} // namespace

TEST(textonDirections, ofACubeAreItsCornersAndSides)
{
    EXPECT_THAT(steps2D(CUBE, 1), ElementsAre(Step2(0, 1), Step2(1, 1), Step2(1, 0), Step2(-1, 1)));
    EXPECT_THAT(steps2D(CUBE, 3), ElementsAre(Step2(0, 3), Step2(3, 3), Step2(3, 0), Step2(-3, 3)));
    EXPECT_THAT(steps3D(CUBE, 1),
                ElementsAre(Step3(0, 1, -1), Step3(1, 1, -1), Step3(1, 0, -1), Step3(-1, 1, -1), //
                            Step3(0, 1, 0), Step3(1, 1, 0), Step3(1, 0, 0), Step3(-1, 1, 0),     //
                            Step3(0, 1, 1), Step3(1, 1, 1), Step3(1, 0, 1), Step3(-1, 1, 1), Step3(0, 0, 1)));
    EXPECT_EQ(steps3D(CUBE, 2).size(), 4u * 5 + 1);
}

TEST(textonDirections, ofASphereAreAtItsDistance)
{
    EXPECT_THAT(steps2D(SPHERE, 1), ElementsAre(Step2(0, 1), Step2(1, -1), Step2(1, 0), Step2(1, 1)));
    EXPECT_THAT(steps2D(SPHERE, 2), ElementsAre(Step2(0, 2), Step2(1, -2), Step2(1, 2), Step2(2, -2), Step2(2, -1),
                                                Step2(2, 0), Step2(2, 1), Step2(2, 2)));
    // Truncated, the corners of the unit cube are at distance 1.
    EXPECT_EQ(steps3D(SPHERE, 1).size(), 13u);
    EXPECT_EQ(steps3D(SPHERE, 1).front(), Step3(0, 1, -1));
    EXPECT_EQ(steps3D(SPHERE, 1).back(), Step3(1, 1, 1));
}

TEST(textonDirections, ofABallAreUpToItsDistance)
{
    EXPECT_EQ(steps2D(BALL, 1), steps2D(SPHERE, 1));
    EXPECT_THAT(steps2D(BALL, 2),
                ElementsAre(Step2(0, 1), Step2(0, 2), Step2(1, -2), Step2(1, -1), Step2(1, 0), Step2(1, 1), Step2(1, 2),
                            Step2(2, -2), Step2(2, -1), Step2(2, 0), Step2(2, 1), Step2(2, 2)));
}

TEST(textonDirections, inSpaceAreOneOfEachTwoOppositeSteps)
{
    for (TextonShape const shape : {SPHERE, BALL})
        for (int const size : {1, 2, 3, 5}) {
            auto const steps = steps3D(shape, static_cast<unsigned int>(size));
            std::set<Step3> const all(steps.begin(), steps.end());
            EXPECT_EQ(all.size(), steps.size());
            std::size_t expected = 0;
            for (int z = -size; z <= size; ++z)
                for (int y = -size; y <= size; ++y)
                    for (int x = -size; x <= size; ++x) {
                        int const length = static_cast<int>(std::sqrt(x * x + y * y + z * z));
                        bool const isMeant =
                            (x != 0 || y != 0 || z != 0) && (length == size || (shape == BALL && length < size));
                        bool const isThere = all.count({x, y, z}) == 1;
                        bool const isOppositeThere = all.count({-x, -y, -z}) == 1;
                        EXPECT_EQ(isThere != isOppositeThere, isMeant) << x << ' ' << y << ' ' << z;
                        expected += isMeant;
                    }
            EXPECT_EQ(2 * steps.size(), expected);
            // Plan by plan.
            EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end(),
                                       [](Step3 const& a, Step3 const& b) { return std::get<2>(a) < std::get<2>(b); }));
        }
}

TEST(textonDirections, beyondTheWindowAreTheFirstOneThatDoesNotFit)
{
    EXPECT_THAT(steps2D(CUBE, 11), ElementsAre(Step2(0, 11)));
    EXPECT_THAT(steps2D(SPHERE, 11), ElementsAre(Step2(0, 11)));
    EXPECT_THAT(steps2D(BALL, 400), ElementsAre(Step2(0, 11)));
    EXPECT_THAT(steps3D(CUBE, 11), ElementsAre(Step3(0, 11, -11)));
    EXPECT_THAT(steps3D(SPHERE, 11), ElementsAre(Step3(0, 1, -11)));
    EXPECT_THAT(steps3D(BALL, 11), ElementsAre(Step3(0, 1, -11)));
    // Within a moment, whatever the size.
    EXPECT_THAT(steps2D(BALL, 4294967295u), ElementsAre(Step2(0, 11)));
    EXPECT_THAT(steps3D(SPHERE, 4294967295u), ElementsAre(Step3(0, 1, -2147483647)));
    EXPECT_THAT(steps2D(CUBE, 4294967295u, 2147483647u), ElementsAre(Step2(0, 2147483647)));
    EXPECT_GT(steps2D(CUBE, 10).size(), 1u);
}
