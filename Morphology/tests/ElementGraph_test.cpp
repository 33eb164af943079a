#include "Morphology/private/ElementGraph.h"

#include "Core/private/Kernel/OffsetCollections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace qel::morphology {
namespace {

using Point = std::array<long, 3>;
using Points = std::set<Point>;

/// The voxels that the last node sees.
Points covered(ElementGraph const& graph)
{
    std::vector<Points> seen{{{0, 0, 0}}};
    for (std::size_t node = 1; node < graph.nodes.size(); ++node) {
        Points points;
        for (auto const& tap : graph.nodes[node])
            for (Point const& point : seen[tap.node])
                points.insert({point[0] + tap.offset[0], point[1] + tap.offset[1], point[2] + tap.offset[2]});
        seen.push_back(points);
    }
    return seen.back();
}

template <class IsIn> Points pointsWhere(long reach, int axes, IsIn const& isIn)
{
    Points points;
    long const depth = axes == 3 ? reach : 0;
    for (long z = -depth; z <= depth; ++z)
        for (long y = -reach; y <= reach; ++y)
            for (long x = -reach; x <= reach; ++x)
                if (isIn(std::abs(x), std::abs(y), std::abs(z)))
                    points.insert({x, y, z});
    return points;
}

ElementGraph::Tap const image{0, {0, 0, 0}};

template <class Make> ElementGraph made(Make const& make)
{
    ElementGraph graph;
    graph.finish(make(graph));
    return graph;
}

TEST(ElementGraphTest, coversSquaresAndCubes)
{
    for (int const axes : {2, 3})
        for (unsigned long radius = 1; radius <= (axes == 2 ? 40 : 12); ++radius)
            EXPECT_EQ(covered(made([&](auto& graph) { return graph.box(image, radius, axes); })),
                      pointsWhere(static_cast<long>(radius), axes, [](long, long, long) { return true; }))
                << radius;
}

TEST(ElementGraphTest, coversDiamonds)
{
    for (int const axes : {2, 3})
        for (unsigned long radius = 1; radius <= (axes == 2 ? 40 : 17); ++radius) {
            auto const reach = static_cast<long>(radius);
            EXPECT_EQ(covered(made([&](auto& graph) { return graph.diamond(image, radius, axes); })),
                      pointsWhere(reach, axes, [&](long x, long y, long z) { return x + y + z <= reach; }))
                << radius;
        }
}

TEST(ElementGraphTest, coversRepeatedNeighbourhoodsOfEighteen)
{
    for (unsigned long radius = 1; radius <= 6; ++radius) {
        auto const reach = static_cast<long>(radius);
        EXPECT_EQ(covered(made([&](auto& graph) { return graph.cuboctahedron(image, radius); })),
                  pointsWhere(reach, 3, [&](long x, long y, long z) { return x + y + z <= 2 * reach; }))
            << radius;
    }
}

TEST(ElementGraphTest, coversDisksAndBalls)
{
    for (int const axes : {2, 3})
        for (unsigned long radius = 0; radius <= (axes == 2 ? 90 : 11); ++radius) {
            auto const reach = static_cast<long>(radius);
            EXPECT_EQ(covered(made([&](auto& graph) { return graph.ball(image, radius, axes); })),
                      pointsWhere(reach, axes,
                                  [&](long x, long y, long z) { return x * x + y * y + z * z <= reach * reach; }))
                << radius;
        }
}

TEST(ElementGraphTest, coversLargeDisksWithFewWindows)
{
    ElementGraph const graph = made([&](auto& made) { return made.ball(image, 150, 2); });
    EXPECT_LT(graph.nodes.size(), 15u);
    EXPECT_EQ(covered(graph), pointsWhere(150, 2, [&](long x, long y, long) { return x * x + y * y <= 150 * 150; }));
}

Points pointsOf(std::vector<kernel::Offset3D> const& offsets)
{
    Points points;
    for (auto const& offset : offsets)
        points.insert({offset.x, offset.y, offset.z});
    return points;
}

TEST(ElementGraphTest, coversAnyCollection)
{
    for (double phi = -40; phi < 200; phi += 35)
        for (double theta = -180; theta < 180; theta += 50) {
            auto const disk = kernel::generateDiskOffset3DCollection(phi, theta, 6);
            EXPECT_EQ(covered(made([&](auto& graph) { return graph.collection(image, disk); })), pointsOf(disk));
        }
    std::vector<kernel::Offset3D> const scattered{{5, 0, 0}, {-3, 2, 1}, {5, 0, 0}, {6, 0, 0}, {-4, 2, 1}, {0, -7, 9}};
    EXPECT_EQ(covered(made([&](auto& graph) { return graph.collection(image, scattered); })), pointsOf(scattered));
    std::vector<kernel::Offset3D> const one{{5, -2, 1}};
    EXPECT_EQ(covered(made([&](auto& graph) { return graph.collection(image, one); })), pointsOf(one));
}

TEST(ElementGraphTest, coversLinesInFewSteps)
{
    for (double angle = -200; angle <= 200; angle += 3.3)
        for (unsigned long const size : {1ul, 2ul, 3ul, 9ul, 64ul, 101ul, 200ul}) {
            std::vector<kernel::Offset3D> line;
            for (auto const& offset : kernel::generateLineOffset2DCollectionWithConstNumOfPixels(angle, size, true))
                line.push_back({offset.x, offset.y, 0});
            ElementGraph const graph = made([&](auto& made) { return made.line(image, line); });
            ASSERT_EQ(covered(graph), pointsOf(line)) << angle << ' ' << size;
            EXPECT_LE(graph.cost(), std::max(size + 2, 80ul)) << angle << ' ' << size;
        }
    auto const straight = kernel::generateLineOffset3DCollectionWithConstNumOfPixels(0, 0, 1000, true);
    EXPECT_LT(made([&](auto& graph) { return graph.line(image, straight); }).cost(), 30u);
}

TEST(ElementGraphTest, tellsWhatIsSeenOfEachNode)
{
    ElementGraph const graph = made([&](auto& made) { return made.box(image, 3, 2); });
    auto const reaches = graph.reaches();
    EXPECT_EQ(reaches.front().lowest, (Point{-3, -3, 0}));
    EXPECT_EQ(reaches.front().highest, (Point{3, 3, 0}));
    EXPECT_EQ(reaches.back().lowest, (Point{0, 0, 0}));
    EXPECT_EQ(reaches.back().highest, (Point{0, 0, 0}));
}

} // namespace
} // namespace qel::morphology
