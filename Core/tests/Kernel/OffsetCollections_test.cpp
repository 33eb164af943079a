#include "Core/private/Access/computeExtrema.h"
#include "Core/private/Kernel/OffsetCollections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace qel::kernel {

void PrintTo(Offset2D const& offset, std::ostream* out) { *out << '(' << offset.x << ", " << offset.y << ')'; }
void PrintTo(Offset3D const& offset, std::ostream* out)
{
    *out << '(' << offset.x << ", " << offset.y << ", " << offset.z << ')';
}

namespace {

using Plane = std::vector<Offset2D>;
using Space = std::vector<Offset3D>;

template <class Offset> std::vector<Offset> inverted(std::vector<Offset> collection)
{
    invert(collection);
    return collection;
}

Plane randomPlane(unsigned seed, int size)
{
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> component(-2, 2);
    Plane plane;
    for (int i = 0; i < size; ++i)
        plane.push_back({component(random), component(random)});
    return plane;
}

Space inSpace(Plane const& plane)
{
    Space space;
    for (Offset2D const& offset : plane)
        space.push_back({offset.x, offset.y, offset.x * offset.y});
    return space;
}

/// Member by member, as it is defined.
template <class Offset> void deleteCommonOneByOne(std::vector<Offset>& first, std::vector<Offset>& second)
{
    std::vector<Offset> noted;
    for (Offset const& member : first) {
        auto const found = std::find(second.begin(), second.end(), member);
        if (found == second.end())
            continue;
        second.erase(found);
        noted.push_back(member);
    }
    for (Offset const& member : noted)
        first.erase(std::find(first.begin(), first.end(), member));
}

TEST(OffsetCollectionsTest, inversionNegatesEveryComponent)
{
    Plane plane{{1, -2}, {0, 3}};
    invert(plane);
    EXPECT_EQ(plane, (Plane{{-1, 2}, {0, -3}}));
    Space space{{1, -2, 5}, {0, 3, -7}};
    invert(space);
    EXPECT_EQ(space, (Space{{-1, 2, -5}, {0, -3, 7}}));
}

TEST(OffsetCollectionsTest, shiftAddsToEveryMemberEvenOneOfTheirs)
{
    Plane plane{{1, -2}, {0, 3}};
    shift(plane, {10, 20});
    EXPECT_EQ(plane, (Plane{{11, 18}, {10, 23}}));
    shift(plane, plane[0]);
    EXPECT_EQ(plane, (Plane{{22, 36}, {21, 41}}));
    Space space{{1, -2, 5}};
    shift(space, {10, 20, 30});
    EXPECT_EQ(space, (Space{{11, 18, 35}}));
}

TEST(OffsetCollectionsTest, commonElementsAreDeletedAsFromMultisets)
{
    Plane first{{1, 1}, {2, 2}, {1, 1}, {3, 3}};
    Plane second{{4, 4}, {1, 1}, {3, 3}, {3, 3}};
    commonElementsDeletion(first, second);
    EXPECT_EQ(first, (Plane{{2, 2}, {1, 1}}));
    EXPECT_EQ(second, (Plane{{4, 4}, {3, 3}}));
}

TEST(OffsetCollectionsTest, commonElementsAreThoseOfTheDefinition)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        Plane first = randomPlane(seed, static_cast<int>(seed % 40));
        Plane second = randomPlane(seed + 1000, static_cast<int>(seed % 33));
        Plane expectedFirst = first;
        Plane expectedSecond = second;
        Space spaceFirst = inSpace(first);
        Space spaceSecond = inSpace(second);
        deleteCommonOneByOne(expectedFirst, expectedSecond);
        commonElementsDeletion(first, second);
        commonElementsDeletion(spaceFirst, spaceSecond);
        EXPECT_EQ(first, expectedFirst) << seed;
        EXPECT_EQ(second, expectedSecond) << seed;
        EXPECT_EQ(spaceFirst, inSpace(expectedFirst)) << seed;
        EXPECT_EQ(spaceSecond, inSpace(expectedSecond)) << seed;
    }
}

TEST(OffsetCollectionsTest, commonElementsOfLargeSpheresAreQuick)
{
    // A window that moves by one voxel: half a million members, of which all but the two faces are common.
    Space before = generateSphereOffset3DCollection(50);
    Space after = before;
    shift(after, {1, 0, 0});
    auto const begin = std::chrono::steady_clock::now();
    commonElementsDeletion(before, after);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    std::size_t const face = generateDiskOffset2DCollection(50).size();
    EXPECT_EQ(before.size(), face);
    EXPECT_EQ(after.size(), face);
}

TEST(OffsetCollectionsTest, maskedTranslationKeepsSourcesOfMembers)
{
    Plane plane = generateSquareOffset2DCollection(1);
    buildMaskedOffset2DTrans(plane, 1, 0);
    EXPECT_EQ(plane, (Plane{{-1, -1}, {-1, 0}, {-1, 1}, {0, -1}, {0, 0}, {0, 1}}));
    buildMaskedOffset2DTrans(plane, 0, -2);
    EXPECT_EQ(plane, (Plane{{-1, 1}, {0, 1}}));
    buildMaskedOffset2DTrans(plane, 5, 5);
    EXPECT_EQ(plane, Plane{});

    Space space{{0, 0, 0}, {1, 2, 3}, {1, 2, 3}, {2, 4, 6}};
    buildMaskedOffset3DTrans(space, 1, 2, 3);
    EXPECT_EQ(space, (Space{{0, 0, 0}, {0, 0, 0}, {1, 2, 3}}));
}

TEST(OffsetCollectionsTest, anglesOfThePlaneLieFromMinus180To180)
{
    EXPECT_EQ(toConventionAngles(0), 0.0);
    EXPECT_EQ(toConventionAngles(179.5), 179.5);
    EXPECT_EQ(toConventionAngles(180), -180.0);
    EXPECT_EQ(toConventionAngles(-180), -180.0);
    EXPECT_EQ(toConventionAngles(-180.5), 179.5);
    EXPECT_EQ(toConventionAngles(360), 0.0);
    EXPECT_EQ(toConventionAngles(545), -175.0);
    EXPECT_EQ(toConventionAngles(-545), 175.0);
    EXPECT_EQ(toConventionAngles(3690), 90.0);
}

TEST(OffsetCollectionsTest, anglesOfSpaceKeepTheirDirection)
{
    auto const expect = [](double phi, double theta, double expectedPhi, double expectedTheta) {
        SCOPED_TRACE(testing::Message() << phi << ", " << theta);
        toConventionAngles(phi, theta);
        EXPECT_EQ(phi, expectedPhi);
        EXPECT_EQ(theta, expectedTheta);
    };
    expect(30, 40, 30, 40);
    expect(30, 220, 30, -140);
    expect(190, 40, 170, -140);
    expect(190, -40, 170, 140);
    expect(-30, 40, 30, -140);
    expect(360, 0, 0, 0);
    expect(390, 10, 30, 10);
    expect(180, 0, 180, -180);
    expect(180, -90, 180, 90);
    expect(-180, 0, 180, -180);
}

TEST(OffsetCollectionsTest, squaresAndCubesAscendWithTheFirstAxisOutermost)
{
    EXPECT_EQ(generateSquareOffset2DCollection(0), (Plane{{0, 0}}));
    EXPECT_EQ(generateSquareOffset2DCollection(1),
              (Plane{{-1, -1}, {-1, 0}, {-1, 1}, {0, -1}, {0, 0}, {0, 1}, {1, -1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(generateCubeOffset3DCollection(0), (Space{{0, 0, 0}}));
    Space const cube = generateCubeOffset3DCollection(2);
    ASSERT_EQ(cube.size(), 125u);
    for (std::size_t i = 0; i < cube.size(); ++i) {
        long const index = static_cast<long>(i);
        EXPECT_EQ(cube[i], (Offset3D{index / 25 - 2, index / 5 % 5 - 2, index % 5 - 2}));
    }
}

TEST(OffsetCollectionsTest, disksAndSpheresAreTheNearMembersInTheSameOrder)
{
    EXPECT_EQ(generateDiskOffset2DCollection(0), (Plane{{0, 0}}));
    EXPECT_EQ(generateSphereOffset3DCollection(0), (Space{{0, 0, 0}}));
    EXPECT_EQ(generateDiskOffset2DCollection(1), (Plane{{-1, 0}, {0, -1}, {0, 0}, {0, 1}, {1, 0}}));
    for (unsigned long radius = 0; radius < 6; ++radius) {
        long const limit = static_cast<long>(radius * radius);
        Plane disk;
        for (Offset2D const& o : generateSquareOffset2DCollection(radius))
            if (o.x * o.x + o.y * o.y <= limit)
                disk.push_back(o);
        EXPECT_EQ(generateDiskOffset2DCollection(radius), disk);
        Space sphere;
        for (Offset3D const& o : generateCubeOffset3DCollection(radius))
            if (o.x * o.x + o.y * o.y + o.z * o.z <= limit)
                sphere.push_back(o);
        EXPECT_EQ(generateSphereOffset3DCollection(radius), sphere);
    }
}

TEST(OffsetCollectionsTest, aSimpleLineMakesUnitSteps)
{
    EXPECT_EQ(generateLineOffset2DCollection(0, 4), (Plane{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
    EXPECT_EQ(generateLineOffset2DCollection(90, 3), (Plane{{0, 0}, {0, 1}, {0, 2}}));
    EXPECT_EQ(generateLineOffset2DCollection(45, 5), (Plane{{0, 0}, {1, 1}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(generateLineOffset2DCollection(180, 3), (Plane{{0, 0}, {-1, 0}, {-2, 0}}));
    EXPECT_EQ(generateLineOffset2DCollection(-30, 4), (Plane{{0, 0}, {1, 0}, {2, -1}, {3, -1}}));
    EXPECT_TRUE(generateLineOffset2DCollection(45, 0).empty());
}

TEST(OffsetCollectionsTest, aLineOfConstantLengthHasOnePixelForEachStep)
{
    auto const line = [](double angle, unsigned long count) {
        return generateLineOffset2DCollectionWithConstNumOfPixels(angle, count, true);
    };
    EXPECT_EQ(line(0, 3), (Plane{{0, 0}, {1, 0}, {2, 0}}));
    EXPECT_EQ(line(45, 4), (Plane{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(line(90, 3), (Plane{{0, 0}, {0, 1}, {0, 2}}));
    EXPECT_EQ(line(135, 3), (Plane{{0, 0}, {-1, 1}, {-2, 2}}));
    EXPECT_EQ(line(180, 3), (Plane{{0, 0}, {-1, 0}, {-2, 0}}));
    EXPECT_EQ(line(-90, 3), (Plane{{0, 0}, {0, -1}, {0, -2}}));
    EXPECT_EQ(line(30, 5), (Plane{{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}}));
    EXPECT_EQ(line(390, 5), line(30, 5));
    EXPECT_TRUE(line(33, 0).empty());
}

TEST(OffsetCollectionsTest, oppositeLinesMirrorEachOther)
{
    EXPECT_EQ(generateLineOffset2DCollectionWithConstNumOfPixels(-45, 9, true),
              inverted(generateLineOffset2DCollectionWithConstNumOfPixels(135, 9, true)));
    for (int angle = 0; angle < 180; ++angle)
        EXPECT_EQ(generateLineOffset2DCollectionWithConstNumOfPixels(angle - 180.0, 23, true),
                  inverted(generateLineOffset2DCollectionWithConstNumOfPixels(angle, 23, true)))
            << angle;
}

TEST(OffsetCollectionsTest, withoutTheConventionALineRoundsByItsOwnSlope)
{
    Plane const line = generateLineOffset2DCollectionWithConstNumOfPixels(-30, 6, false);
    for (std::size_t i = 0; i < line.size(); ++i) {
        EXPECT_EQ(line[i].x, static_cast<long>(i));
        EXPECT_EQ(line[i].y, std::lround(std::floor(-static_cast<double>(i) * std::tan(M_PI / 6) + 0.5)));
    }
    EXPECT_EQ(generateLineOffset2DCollectionWithConstNumOfPixels(63, 40, false),
              generateLineOffset2DCollectionWithConstNumOfPixels(63, 40, true));
}

TEST(OffsetCollectionsTest, aLineInSpaceStepsAlongItsDominantAxis)
{
    auto const line = [](double phi, double theta, unsigned long count) {
        return generateLineOffset3DCollectionWithConstNumOfPixels(phi, theta, count, true);
    };
    EXPECT_EQ(line(0, 0, 3), (Space{{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}));
    EXPECT_EQ(line(90, 0, 3), (Space{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
    EXPECT_EQ(line(90, 90, 3), (Space{{0, 0, 0}, {0, 1, 0}, {0, 2, 0}}));
    EXPECT_EQ(line(45, 10, 3), (Space{{0, 0, 0}, {1, 0, 1}, {2, 0, 2}}));
    EXPECT_EQ(line(60, 40, 4), (Space{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 2}}));
    EXPECT_TRUE(line(10, 20, 0).empty());
}

TEST(OffsetCollectionsTest, oppositeLinesInSpaceMirrorEachOther)
{
    for (int phi = 5; phi < 180; phi += 7)
        for (int theta = 0; theta < 180; theta += 11) {
            Space const line = generateLineOffset3DCollectionWithConstNumOfPixels(phi, theta, 17, true);
            EXPECT_EQ(generateLineOffset3DCollectionWithConstNumOfPixels(180.0 - phi, theta - 180.0, 17, true),
                      inverted(line))
                << phi << ", " << theta;
            ASSERT_EQ(line.size(), 17u);
            EXPECT_EQ(std::max({std::abs(line[16].x), std::abs(line[16].y), std::abs(line[16].z)}), 16);
        }
}

TEST(OffsetCollectionsTest, aDiskInSpaceIsNormalToItsDirection)
{
    Space flat;
    for (Offset2D const& o : generateDiskOffset2DCollection(3))
        flat.push_back({o.x, o.y, 0});
    EXPECT_EQ(generateDiskOffset3DCollection(0, 0, 3), flat);
    EXPECT_EQ(generateDiskOffset3DCollection(0, 0, 0), (Space{{0, 0, 0}}));
    EXPECT_EQ(generateDiskOffset3DCollection(90, 0, 1),
              (Space{{0, 0, 1}, {0, -1, 0}, {0, 0, 0}, {0, 1, 0}, {0, 0, -1}}));
    for (Offset3D const& o : generateDiskOffset3DCollection(40, 75, 9)) {
        double const phi = 40 * M_PI / 180;
        double const theta = 75 * M_PI / 180;
        double const distance = static_cast<double>(o.x) * std::sin(phi) * std::cos(theta) +
                                static_cast<double>(o.y) * std::sin(phi) * std::sin(theta) +
                                static_cast<double>(o.z) * std::cos(phi);
        EXPECT_LT(std::abs(distance), 0.9);
    }
    EXPECT_EQ(generateDiskOffset3DCollection(40, 75, 9).size(), generateDiskOffset2DCollection(9).size());
}

TEST(OffsetCollectionsTest, matrixCirclesGoByQuadrantsAndAreStrict)
{
    Plane circle{{9, 9}};
    buildMatrixCircle(0, circle);
    EXPECT_TRUE(circle.empty());
    buildMatrixCircle(1, circle);
    EXPECT_EQ(circle, (Plane{{0, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}}));
    buildMatrixCircle(2, circle);
    EXPECT_EQ(circle.size(), 21u);
    EXPECT_EQ(Plane(circle.begin() + 5, circle.begin() + 11),
              (Plane{{0, 1}, {0, -1}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}));
    EXPECT_EQ(std::count(circle.begin(), circle.end(), Offset2D{2, 2}), 0);
    EXPECT_EQ(std::count(circle.begin(), circle.end(), Offset2D{-2, 1}), 1);
}

TEST(OffsetCollectionsTest, matrixSpheresAscendWithTheLastAxisOutermost)
{
    Space sphere{{9, 9, 9}};
    buildMatrixSphere(0, sphere);
    EXPECT_TRUE(sphere.empty());
    buildMatrixSphere(1, sphere);
    EXPECT_EQ(sphere, (Space{{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
    buildMatrixSphere(2, sphere); // less than 6 away, in squares
    EXPECT_EQ(sphere.size(), 57u);
    EXPECT_EQ(std::count(sphere.begin(), sphere.end(), Offset3D{1, 1, 2}), 0);
    EXPECT_EQ(std::count(sphere.begin(), sphere.end(), Offset3D{0, -1, 2}), 1);
}

TEST(OffsetCollectionsTest, extremaOfNoOffsetsAreInverted)
{
    long minX = 0, maxX = 0, minY = 0, maxY = 0, minZ = 0, maxZ = 0;
    computeExtrema(Space{}, minX, maxX, minY, maxY, minZ, maxZ);
    EXPECT_EQ(minX, std::numeric_limits<long>::max());
    EXPECT_EQ(maxX, std::numeric_limits<long>::min());
    EXPECT_EQ(minZ, std::numeric_limits<long>::max());
    EXPECT_EQ(maxZ, std::numeric_limits<long>::min());
    computeExtrema(Plane{{1, -5}, {-3, 4}}, minX, maxX, minY, maxY);
    EXPECT_EQ(minX, -3);
    EXPECT_EQ(maxX, 1);
    EXPECT_EQ(minY, -5);
    EXPECT_EQ(maxY, 4);
}

} // namespace
} // namespace qel::kernel
