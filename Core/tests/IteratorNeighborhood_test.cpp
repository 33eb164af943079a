#include "Core/private/Access/IteratorNeighborhood.h"
#include "Core/tests/IteratorSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::Step;
using access::View;
using kernel::Offset2D;
using kernel::Offset3D;

Shape const volume{21, 6, 3, 2, 2};

template <class Block> std::vector<Block> blocksOf(Shape const& shape)
{
    if constexpr (std::is_same_v<Block, Block2d>)
        return blocksOfAPlan(shape, 1, 0, 1);
    else
        return blocksOfAVolume(shape, 0, 1);
}

/// Steps through every block, and compares each pointer of each packet with the voxel that its offset names.
template <class T, int N, class Block, class Cursor, class Offsets>
void expectNeighbours(Cursor& cursor, HostImage const& image, access::BorderCondition<T> const& condition,
                      Offsets const& offsets)
{
    for (Block const& block : blocksOf<Block>(volume)) {
        long const cols = static_cast<long>(block.getNbCols());
        std::vector<Place> places;
        for (cursor.init(block); !cursor.atEnd(); ++cursor) {
            Place const place = placeOf(cursor);
            for (int lane = 0; lane < std::min<long>(N, cols - cursor.column()); ++lane) {
                places.push_back({place.column + lane, place.row, place.plan});
                for (unsigned long i = 0; i < offsets.size(); ++i) {
                    auto const& offset = offsets[i];
                    long z = 0;
                    if constexpr (requires { offset.z; })
                        z = offset.z;
                    ASSERT_TRUE(
                        sameValue(cursor.pointer(i)[lane], conditionAt(condition, image, place.column + lane + offset.x,
                                                                       place.row + offset.y, place.plan + z, 0, 1)))
                        << "offset " << i << " at " << place.column + lane << ' ' << place.row << ' ' << place.plan;
                }
            }
        }
        ASSERT_EQ(places, placesOf(block));
    }
}

template <class V, int N, class Cursor, class Block> void expectShape(std::vector<Offset3D> const& offsets)
{
    using T = typename V::VoxelType;
    HostImage const image(randomPicture<T>(volume, 51));
    auto const condition = FixedBorderCondition<T>::New(T(55));
    Cursor cursor(V::New(&image, condition));
    ASSERT_EQ(static_cast<unsigned long>(Cursor::size), offsets.size());
    expectNeighbours<T, N, Block>(cursor, image, *condition, offsets);
    cursor.init(blocksOf<Block>(volume).front());
    ASSERT_EQ(&*cursor, cursor.pointer(Cursor::centre));
    ASSERT_EQ(&cursor[0], cursor.pointer(0));
}

/// The steps of the cube that are at most `reach` axis steps long, in row order.
std::vector<Offset3D> steps(long reach, long depth)
{
    std::vector<Offset3D> all;
    for (long z = -depth; z <= depth; ++z)
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 1; ++x)
                if (std::abs(x) + std::abs(y) + std::abs(z) <= reach)
                    all.push_back({x, y, z});
    return all;
}

TEST(IteratorNeighborhoodTest, crossInAPlanIsUpLeftCentreRightDown)
{
    std::vector<Offset3D> const offsets{{0, -1, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    forEachView([&]<class V, int N>() { expectShape<V, N, access::IteratorNeighborhood2D_4<V, N>, Block2d>(offsets); });
}

TEST(IteratorNeighborhoodTest, squareInAPlanGoesRowByRow)
{
    forEachView(
        [&]<class V, int N>() { expectShape<V, N, access::IteratorNeighborhood2D_8<V, N>, Block2d>(steps(2, 0)); });
}

TEST(IteratorNeighborhoodTest, facesOfAVoxel)
{
    forEachView(
        [&]<class V, int N>() { expectShape<V, N, access::IteratorNeighborhood3D_6<V, N>, Block3d>(steps(1, 1)); });
}

TEST(IteratorNeighborhoodTest, facesAndEdgesOfAVoxel)
{
    EXPECT_EQ(steps(2, 1).size(), 19u);
    forEachView(
        [&]<class V, int N>() { expectShape<V, N, access::IteratorNeighborhood3D_18<V, N>, Block3d>(steps(2, 1)); });
}

TEST(IteratorNeighborhoodTest, cubeAroundAVoxel)
{
    EXPECT_EQ(steps(3, 1).size(), 27u);
    forEachView(
        [&]<class V, int N>() { expectShape<V, N, access::IteratorNeighborhood3D_26<V, N>, Block3d>(steps(3, 1)); });
}

TEST(IteratorNeighborhoodTest, takesWhatStandsOutsideFromAnyBorderCondition)
{
    HostImage const image(randomPicture<short>(volume, 52));
    for (auto const& condition : allConditions<short>()) {
        auto const view = View<short>::New(&image, condition);
        access::IteratorNeighborhood2D_8<View<short>, 1> square(view);
        expectNeighbours<short, 1, Block2d>(square, image, *condition, steps(2, 0));
        std::vector<Offset2D> const far{{-4, 2}, {3, -5}, {0, 0}};
        access::IteratorNeighborhood2D_Gen<View<short>, 1> general(view, far);
        expectNeighbours<short, 1, Block2d>(general, image, *condition, far);
    }
    for (auto const& condition : conditionsOfVolumes<short>()) {
        access::IteratorNeighborhood3D_26<View<short>, 1> cube(View<short>::New(&image, condition));
        expectNeighbours<short, 1, Block3d>(cube, image, *condition, steps(3, 1));
    }
    access::IteratorNeighborhood3D_6<View<short>, 1> faces(View<short>::New(&image, allConditions<short>().back()));
    EXPECT_QEL_THROW(faces.init(block3d(0, 5, 0, 5, 0, 2)), UnexpectedError,
                     "Directional mirror border condition is not compatible with plans extrapolation");
}

TEST(IteratorNeighborhoodTest, inACornerFiveOfNineStandOutside)
{
    HostImage const image(Picture<int>({4, 3}, 1));
    access::IteratorNeighborhood2D_8<View<int>, 1> cursor(View<int>::New(&image, FixedBorderCondition<int>::New(0)));
    auto const inside = [&](long column, long row) {
        for (cursor.init(block2d(0, 4, 0, 3)); cursor.column() != column || cursor.row() != row;)
            ++cursor;
        int sum = 0;
        for (int i = 0; i < 9; ++i)
            sum += cursor[i];
        return sum;
    };
    EXPECT_EQ(inside(0, 0), 4);
    EXPECT_EQ(inside(3, 0), 4);
    EXPECT_EQ(inside(0, 2), 4);
    EXPECT_EQ(inside(3, 2), 4);
    EXPECT_EQ(inside(1, 0), 6);
    EXPECT_EQ(inside(1, 1), 9);
}

TEST(IteratorNeighborhoodTest, worksOnImagesOfOneVoxel)
{
    HostImage const image(Picture<int>({1, 1}, 7));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(1));
    access::IteratorNeighborhood3D_26<View<int>, 1> cube(view);
    cube.init(block3d(0, 1, 0, 1, 0, 1));
    int sum = 0;
    for (int i = 0; i < 27; ++i)
        sum += cube[i];
    EXPECT_EQ(sum, 26 + 7);
    ++cube;
    EXPECT_TRUE(cube.atEnd());
}

TEST(IteratorNeighborhoodTest, readsEachRowOnceABlockAndTwoMore)
{
    HostImage image(randomPicture<int>({9, 12, 5}, 3));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(1));
    access::IteratorNeighborhood2D_4<View<int>, 1> cross(view);
    image.forgetCalls();
    for (cross.init(block2d(2, 7, 3, 9, 1)); !cross.atEnd(); ++cross) {
    }
    EXPECT_EQ(image.callsOf(READ_ROW), 6u + 2);
    access::IteratorNeighborhood3D_6<View<int>, 1> faces(view);
    image.forgetCalls();
    for (faces.init(block3d(2, 7, 3, 9, 1, 4)); !faces.atEnd(); ++faces) {
    }
    EXPECT_EQ(image.callsOf(READ_ROW), (6u + 2) * (3 + 2));
}

TEST(IteratorNeighborhoodTest, goesFromRowToRow)
{
    auto const picture = randomPicture<int>({9, 12}, 3);
    HostImage image(picture);
    access::IteratorNeighborhood2D_8<View<int>, 1> cursor(View<int>::New(&image, FixedBorderCondition<int>::New(1)));
    int rows = 0;
    for (cursor.init(block2d(2, 7, 3, 9)); !cursor.atEnd(); cursor.nextRow(), ++rows) {
        auto const row = 3 + static_cast<unsigned long>(cursor.row());
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 5; ++x)
                EXPECT_EQ(cursor.rowAt(y)[x], picture.at(2 + x, row + y));
        ++cursor;
    }
    EXPECT_EQ(rows, 6);
}

// ---- any offsets

template <class Offset> std::vector<Offset> randomOffsets(unsigned seed, long reach)
{
    std::mt19937 random(seed);
    auto const step = [&] { return static_cast<long>(random() % (2 * reach + 1)) - reach; };
    std::vector<Offset> offsets(1 + random() % 7);
    for (Offset& offset : offsets) {
        offset.x = step();
        offset.y = step();
        if constexpr (requires { offset.z; })
            offset.z = step() / 2;
    }
    return offsets;
}

TEST(IteratorNeighborhoodGenTest, pointsAtEachOffset)
{
    forEachView([]<class V, int N>() {
        using T = typename V::VoxelType;
        HostImage const image(randomPicture<T>(volume, 53));
        auto const condition = FixedBorderCondition<T>::New(T(55));
        auto const view = V::New(&image, condition);
        for (unsigned seed = 0; seed < 6; ++seed) {
            auto const flat = randomOffsets<Offset2D>(seed, 3);
            access::IteratorNeighborhood2D_Gen<V, N> plane(view, flat);
            ASSERT_EQ(plane.size(), flat.size());
            expectNeighbours<T, N, Block2d>(plane, image, *condition, flat);
            auto const solid = randomOffsets<Offset3D>(seed, 3);
            access::IteratorNeighborhood3D_Gen<V, N> cube(view, solid);
            ASSERT_EQ(cube.size(), solid.size());
            expectNeighbours<T, N, Block3d>(cube, image, *condition, solid);
        }
    });
}

TEST(IteratorNeighborhoodGenTest, takesOffsetsThatLieOnOneSide)
{
    HostImage const image(randomPicture<int>(volume, 54));
    auto const condition = FixedBorderCondition<int>::New(55);
    auto const view = View<int>::New(&image, condition);
    for (std::vector<Offset2D> const& offsets :
         {std::vector<Offset2D>{{2, 1}, {5, 3}}, std::vector<Offset2D>{{-4, -2}, {-1, -1}},
          std::vector<Offset2D>{{30, 9}}, std::vector<Offset2D>{{0, 0}}, std::vector<Offset2D>{{1, 1}, {1, 1}}}) {
        access::IteratorNeighborhood2D_Gen<View<int>, 1> cursor(view, offsets);
        expectNeighbours<int, 1, Block2d>(cursor, image, *condition, offsets);
    }
    std::vector<Offset3D> const behind{{1, 2, 1}, {3, 4, 2}};
    access::IteratorNeighborhood3D_Gen<View<int>, 1> cursor(view, behind);
    expectNeighbours<int, 1, Block3d>(cursor, image, *condition, behind);
}

TEST(IteratorNeighborhoodGenTest, ofTheCentreAloneReadsExactlyTheBlock)
{
    struct Requests : HostImage
    {
        using HostImage::HostImage;
        bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                       unsigned long plan, unsigned long time, unsigned long spectral) const override
        {
            counts.push_back(count);
            return HostImage::readRowAt(count, destination, column, row, plan, time, spectral);
        }
        mutable std::vector<unsigned long> counts;
    };
    Requests image(QEL_INT32, {9, 5});
    access::IteratorNeighborhood2D_Gen<View<int>, 1> cursor(View<int>::New(&image, FixedBorderCondition<int>::New(0)),
                                                            {{0, 0}});
    for (cursor.init(block2d(2, 8, 1, 4)); !cursor.atEnd(); ++cursor) {
    }
    EXPECT_EQ(image.counts, (std::vector<unsigned long>{6, 6, 6}));
}

TEST(IteratorNeighborhoodGenTest, withoutOffsetsStillVisitsTheBlock)
{
    HostImage const image(randomPicture<int>(volume, 54));
    access::IteratorNeighborhood2D_Gen<View<int>, 1> cursor(View<int>::New(&image, FixedBorderCondition<int>::New(0)),
                                                            {});
    int visits = 0;
    for (cursor.init(block2d(2, 8, 1, 4)); !cursor.atEnd(); ++cursor)
        ++visits;
    EXPECT_EQ(visits, 18);
    EXPECT_EQ(cursor.size(), 0u);
}

template <class Cursor, class Offset> std::vector<unsigned long> influenceOf(std::vector<Offset> const& offsets)
{
    HostImage const image(QEL_INT32, {3, 3});
    Cursor const cursor(View<int>::New(&image, FixedBorderCondition<int>::New(0)), offsets);
    AlgoBorderInfluence const influence = cursor.getAlgoBorderInfluence();
    std::vector<unsigned long> reach;
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        reach.push_back(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)));
    return reach;
}

TEST(IteratorNeighborhoodGenTest, tellsHowFarItsOffsetsReach)
{
    using Flat = access::IteratorNeighborhood2D_Gen<View<int>, 1>;
    using Solid = access::IteratorNeighborhood3D_Gen<View<int>, 1>;
    using Reach = std::vector<unsigned long>;
    EXPECT_EQ((influenceOf<Flat, Offset2D>({{-2, 1}, {5, -3}})), (Reach{2, 5, 3, 1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ((influenceOf<Flat, Offset2D>({{2, 1}, {5, 3}})), (Reach{0, 5, 0, 3, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ((influenceOf<Flat, Offset2D>({{-2, -1}, {-5, -3}})), (Reach{5, 0, 3, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ((influenceOf<Flat, Offset2D>({{0, 0}})), Reach(10, 0));
    EXPECT_EQ((influenceOf<Flat, Offset2D>({})), Reach(10, 0));
    EXPECT_EQ((influenceOf<Solid, Offset3D>({{-1, 2, -3}, {4, -5, 6}})), (Reach{1, 4, 5, 2, 3, 6, 0, 0, 0, 0}));
}

TEST(ComputeExtremaTest, givesTheEndsOfEachAxis)
{
    long ends[6];
    kernel::computeExtrema(std::vector<Offset2D>{{3, -1}, {-2, 7}, {0, 0}}, ends[0], ends[1], ends[2], ends[3]);
    EXPECT_EQ(std::vector<long>(ends, ends + 4), (std::vector<long>{-2, 3, -1, 7}));
    kernel::computeExtrema(std::vector<Offset3D>{{3, -1, 5}, {-2, 7, 4}}, ends[0], ends[1], ends[2], ends[3], ends[4],
                           ends[5]);
    EXPECT_EQ(std::vector<long>(ends, ends + 6), (std::vector<long>{-2, 3, -1, 7, 4, 5}));
}

TEST(ComputeExtremaTest, ofNothingAreTheEndsOfTheType)
{
    long const highest = std::numeric_limits<long>::max();
    long const lowest = std::numeric_limits<long>::min();
    long ends[6] = {};
    kernel::computeExtrema(std::vector<Offset3D>{}, ends[0], ends[1], ends[2], ends[3], ends[4], ends[5]);
    EXPECT_EQ(std::vector<long>(ends, ends + 6),
              (std::vector<long>{highest, lowest, highest, lowest, highest, lowest}));
    kernel::computeExtrema(std::vector<Offset2D>{}, ends[0], ends[1], ends[2], ends[3]);
    EXPECT_EQ(ends[0], highest);
    EXPECT_EQ(ends[3], lowest);
}

// ---- squares of two by two

TEST(IteratorSquareTest, stepsBySquaresAlongTwoRows)
{
    forEachVoxelType([]<class T>() {
        auto const picture = randomPicture<T>({9, 7, 2}, 55);
        HostImage const image(picture);
        auto const view = View<T>::New(&image, FixedBorderCondition<T>::New(T(55)));
        access::IteratorNeighborhood2D_Square4ByBlock<View<T>> cursor(view);
        Block2d const block = block2d(2, 9, 1, 7, 1);
        cursor.init(block, 8); // one more than the block has: what stands behind the image
        for (long row : {0l, 2l, 4l}) {
            if (row > 0)
                cursor.fetchRows(row);
            for (long column = 0; column < 8; column += 2, ++cursor) {
                auto const at = [&](long x, long y) {
                    return voxelAt(picture, 2 + column + x, 1 + row + y, 1, 0, 0, T(55));
                };
                ASSERT_TRUE(sameValue(cursor.upperLeft(), at(0, 0)));
                ASSERT_TRUE(sameValue(cursor.upperRight(), at(1, 0)));
                ASSERT_TRUE(sameValue(cursor.lowerLeft(), at(0, 1)));
                ASSERT_TRUE(sameValue(cursor.lowerRight(), at(1, 1)));
                ASSERT_EQ(cursor.upperRow() + column, &cursor.upperLeft());
                ASSERT_EQ(cursor.lowerRow() + column, &cursor.lowerLeft());
            }
        }
    });
}

} // namespace
} // namespace qel::test
