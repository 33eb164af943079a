#include "Core/private/Access/IteratorHalfNeighborhood.h"
#include "Core/tests/IteratorSupport.h"

#include <qel/AlgoBorderInfluence.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace qel::test {
namespace {

using access::Block;
using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::OverlapBorder;
using access::Step;
using access::View;

Shape const volume{21, 6, 3, 2, 2};

template <class Block> std::vector<Block> blocksOf(Shape const& shape)
{
    if constexpr (std::is_same_v<Block, Block2d>)
        return blocksOfAPlan(shape, 1, 1, 0);
    else
        return blocksOfAVolume(shape, 1, 0);
}

/// The half neighbourhoods as they are told: what a forward scan has visited, then the centre.
std::vector<Step> const half4{{0, -1, 0}, {-1, 0, 0}, {0, 0, 0}};
std::vector<Step> const half8{{-1, -1, 0}, {0, -1, 0}, {1, -1, 0}, {-1, 0, 0}, {0, 0, 0}};
std::vector<Step> const half6{{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 0}};
std::vector<Step> halfOfCube(long reach)
{
    std::vector<Step> steps;
    for (long z = -1; z <= 0; ++z)
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 1; ++x)
                if (std::abs(x) + std::abs(y) + std::abs(z) <= reach && 9 * z + 3 * y + x <= 0)
                    steps.push_back({x, y, z});
    return steps;
}

/// A sequential scan, as plain as it can be: each voxel becomes a mix of itself and of what was visited before it.
/// Voxels outside the block are those of the image as it stood at the begin.
template <class T> T mixed(T here, std::vector<T> const& visited)
{
    if constexpr (std::is_floating_point_v<T>) {
        T best = here;
        for (T value : visited)
            best = std::max(best, value);
        return best - T(1);
    } else {
        T sum = here;
        for (T value : visited)
            sum = static_cast<T>(static_cast<unsigned long>(sum) * 3 + static_cast<unsigned long>(value)); // wraps
        return sum;
    }
}

template <class T>
Picture<T> scanned(Picture<T> const& before, Block const& block, std::vector<Step> const& steps, bool forward)
{
    Picture<T> after = before;
    std::vector<Place> places = placesOf(block);
    if (!forward)
        std::reverse(places.begin(), places.end());
    long const sign = forward ? 1 : -1;
    for (Place const& place : places) {
        std::vector<T> visited;
        for (Step const& step : steps)
            if (step.x != 0 || step.y != 0 || step.z != 0)
                visited.push_back(voxelAt(after, place.column + sign * step.x, place.row + sign * step.y,
                                          place.plan + sign * step.z, 1, 0, T(55)));
        T& voxel = after.at(place.column, place.row, place.plan, 1, 0);
        voxel = mixed(voxel, visited);
    }
    return after;
}

template <class T> Picture<T> calmPicture(unsigned seed) { return randomPictureBetween<T>(volume, seed, T(0), T(100)); }

template <class Cursor, class Block> void expectScan(std::vector<Step> const& steps)
{
    using T = typename Cursor::VoxelType;
    ASSERT_EQ(static_cast<unsigned long>(Cursor::size), steps.size());
    auto const before = calmPicture<T>(61);
    for (Block const& block : blocksOf<Block>(volume)) {
        std::vector<Place> visits[2];
        for (IteratorDirection const direction : {Forward, Backward}) {
            HostImage image(before);
            auto const view = View<T>::New(&image, FixedBorderCondition<T>::New(T(55)));
            Cursor cursor(view, OverlapBorder());
            for (cursor.init(block, direction); !cursor.atEnd(); ++cursor) {
                visits[direction].push_back(placeOf(cursor));
                std::vector<T> visited;
                for (int i = 0; i < Cursor::size; ++i)
                    if (i != Cursor::centre)
                        visited.push_back(cursor[i]);
                ASSERT_EQ(&*cursor, cursor.pointer(Cursor::centre));
                *cursor = mixed(*cursor, visited);
            }
            ASSERT_TRUE(samePicture(scanned(before, block, steps, direction == Forward), image))
                << (direction == Forward ? "forward" : "backward") << " in columns " << block.colsBegin() << " to "
                << block.colsEnd() << ", rows " << block.rowsBegin() << " to " << block.rowsEnd();
            // Each row of the block is written once, and no other.
            ASSERT_EQ(image.callsOf(WRITE_ROW), block.getNbRows() * block.getNbPlans());
        }
        ASSERT_EQ(visits[Forward], placesOf(block));
        std::reverse(visits[Backward].begin(), visits[Backward].end());
        ASSERT_EQ(visits[Backward], visits[Forward]);
    }
}

TEST(IteratorHalfNeighborhoodTest, crossInAPlan)
{
    forEachVoxelType(
        []<class T>() { expectScan<access::IteratorHalfBiDirNeighborhood2D_4_Output<View<T>>, Block2d>(half4); });
}

TEST(IteratorHalfNeighborhoodTest, squareInAPlan)
{
    forEachVoxelType(
        []<class T>() { expectScan<access::IteratorHalfBiDirNeighborhood2D_8_Output<View<T>>, Block2d>(half8); });
}

TEST(IteratorHalfNeighborhoodTest, facesOfAVoxel)
{
    forEachVoxelType(
        []<class T>() { expectScan<access::IteratorHalfBiDirNeighborhood3D_6_Output<View<T>>, Block3d>(half6); });
}

TEST(IteratorHalfNeighborhoodTest, facesAndEdgesOfAVoxel)
{
    EXPECT_EQ(halfOfCube(2).size(), 10u);
    forEachVoxelType([]<class T>() {
        expectScan<access::IteratorHalfBiDirNeighborhood3D_18_Output<View<T>>, Block3d>(halfOfCube(2));
    });
}

TEST(IteratorHalfNeighborhoodTest, cubeAroundAVoxel)
{
    EXPECT_EQ(halfOfCube(3).size(), 14u);
    forEachVoxelType([]<class T>() {
        expectScan<access::IteratorHalfBiDirNeighborhood3D_26_Output<View<T>>, Block3d>(halfOfCube(3));
    });
}

/// The pointers in the order in which they are told.
TEST(IteratorHalfNeighborhoodTest, pointsUpAndLeftForwardAndRightAndDownBackward)
{
    auto const picture = calmPicture<int>(62);
    HostImage image(picture);
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(55));
    Block2d const block = block2d(3, 8, 1, 4);
    access::IteratorHalfBiDirNeighborhood2D_8_Output<View<int>> cursor(view, OverlapBorder());
    cursor.init(block, Forward);
    EXPECT_EQ(cursor.column(), 0);
    EXPECT_EQ(cursor.row(), 0);
    EXPECT_EQ((std::vector{cursor[0], cursor[1], cursor[2], cursor[3], cursor[4]}),
              (std::vector{picture.at(2, 0), picture.at(3, 0), picture.at(4, 0), picture.at(2, 1), picture.at(3, 1)}));
    cursor.init(block, Backward);
    EXPECT_EQ(cursor.column(), 4);
    EXPECT_EQ(cursor.row(), 2);
    EXPECT_EQ((std::vector{cursor[0], cursor[1], cursor[2], cursor[3], cursor[4]}),
              (std::vector{picture.at(8, 4), picture.at(7, 4), picture.at(6, 4), picture.at(8, 3), picture.at(7, 3)}));
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
}

/// What a neighbouring block wrote meanwhile is not undone by the copies that a scan holds of it.
template <class Cursor, class Block> void expectNeighboursStay()
{
    using T = typename Cursor::VoxelType;
    for (Block const& block : blocksOf<Block>(volume))
        for (IteratorDirection const direction : {Forward, Backward}) {
            HostImage image(Picture<T>(volume, T(1)));
            auto const view = View<T>::New(&image, FixedBorderCondition<T>::New(T(0)));
            Cursor cursor(view, OverlapBorder());
            cursor.init(block, direction);
            // All around is new now.
            HostImage const twos(Picture<T>(volume, T(2)));
            std::vector<unsigned char> const row(twos.content().begin(), twos.content().begin() + 21 * sizeof(T));
            for (unsigned long plan = 0; plan < volume.plans; ++plan)
                for (unsigned long line = 0; line < volume.rows; ++line)
                    ASSERT_TRUE(image.writeRowAt(21, row.data(), 0, line, plan, 1, 0));
            for (; !cursor.atEnd(); ++cursor)
                *cursor = T(9);
            Picture<T> expected(volume, T(1));
            forEachVoxel(volume, [&](auto column, auto line, auto plan, auto time, auto spectral) {
                if (time == 1 && spectral == 0)
                    expected.at(column, line, plan, time, spectral) = T(2);
            });
            for (Place const& place : placesOf(block))
                expected.at(place.column, place.row, place.plan, 1, 0) = T(9);
            ASSERT_TRUE(samePicture(expected, image));
        }
}

TEST(IteratorHalfNeighborhoodTest, writesBackTheVoxelsOfItsBlockAlone)
{
    expectNeighboursStay<access::IteratorHalfBiDirNeighborhood2D_4_Output<View<short>>, Block2d>();
    expectNeighboursStay<access::IteratorHalfBiDirNeighborhood2D_8_Output<View<short>>, Block2d>();
    expectNeighboursStay<access::IteratorHalfBiDirNeighborhood3D_6_Output<View<short>>, Block3d>();
    expectNeighboursStay<access::IteratorHalfBiDirNeighborhood3D_18_Output<View<short>>, Block3d>();
    expectNeighboursStay<access::IteratorHalfBiDirNeighborhood3D_26_Output<View<short>>, Block3d>();
}

TEST(IteratorHalfNeighborhoodTest, defersItsMargins)
{
    HostImage image(Picture<int>({8, 8, 3}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    OverlapBorder const overlap(AlgoBorderInfluence(1, 1, 0, 0, 0));
    for (IteratorDirection const direction : {Forward, Backward}) {
        access::IteratorHalfBiDirNeighborhood2D_4_Output<View<int>> cursor(view, overlap);
        for (cursor.init(block2d(2, 6, 2, 6), direction); !cursor.atEnd(); ++cursor)
            *cursor += 1;
        Picture<int> const now = fromImage<int>(image);
        int const passes = direction == Forward ? 1 : 2;
        EXPECT_EQ(now.at(3, 3), passes);
        EXPECT_EQ(now.at(4, 4), passes);
        EXPECT_EQ(now.at(2, 3), passes - 1);
        EXPECT_EQ(now.at(5, 4), passes - 1);
        EXPECT_EQ(now.at(3, 2), passes - 1);
        EXPECT_EQ(now.at(3, 5), passes - 1);
        view->writeAllTemporizedRows();
        EXPECT_EQ(fromImage<int>(image).at(5, 5), passes);
    }
    access::IteratorHalfBiDirNeighborhood3D_6_Output<View<int>> cube(view,
                                                                     OverlapBorder(AlgoBorderInfluence(0, 0, 1, 0, 0)));
    image.forgetCalls();
    for (cube.init(block3d(0, 8, 0, 8, 1, 2), Forward); !cube.atEnd(); ++cube)
        *cube = 5;
    // The middle plan of three: its end stands one before the edge, its begin is not 0.
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
    view->writeAllTemporizedRows();
    EXPECT_EQ(fromImage<int>(image).at(7, 7, 1), 5);
}

TEST(IteratorHalfNeighborhoodTest, goesFromRowToRow)
{
    for (IteratorDirection const direction : {Forward, Backward}) {
        HostImage image(Picture<int>({8, 8}));
        auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
        access::IteratorHalfBiDirNeighborhood2D_8_Output<View<int>> cursor(view, OverlapBorder());
        int number = 0;
        for (cursor.init(block2d(1, 4, 2, 5), direction); !cursor.atEnd(); cursor.nextRow()) {
            ++number;
            std::fill(cursor.rowAt(0), cursor.rowAt(0) + 3, number);
        }
        Picture<int> expected({8, 8});
        for (unsigned long row = 2; row < 5; ++row)
            for (unsigned long column = 1; column < 4; ++column)
                expected.at(column, row) = static_cast<int>(direction == Forward ? row - 1 : 5 - row);
        EXPECT_TRUE(samePicture(expected, image));
    }
}

} // namespace
} // namespace qel::test
