#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "Core/tests/IteratorSupport.h"

#include <algorithm>
#include <map>

namespace qel::test {
namespace {

using namespace access;
using kernel::Offset2D;
using kernel::Offset3D;

/// The voxels under the window as a multiset, and the calls that it took.
template <class T> struct Contents
{
    void clear()
    {
        voxels.clear();
        ++fills;
    }
    void add(T const* voxel) { voxels.push_back(*voxel); }
    void update(T const* const* entering, T const* const* leaving, unsigned long count)
    {
        for (unsigned long i = 0; i < count; ++i) {
            voxels.push_back(*entering[i]);
            auto const left =
                std::find_if(voxels.begin(), voxels.end(), [&](T v) { return sameValue(v, *leaving[i]); });
            if (left == voxels.end())
                ++strangers;
            else
                voxels.erase(left);
        }
        moved += count;
    }
    std::vector<T> sorted() const
    {
        std::vector<T> all = voxels;
        std::sort(all.begin(), all.end());
        return all;
    }

    std::vector<T> voxels;
    unsigned long fills = 0;
    unsigned long moved = 0;
    unsigned long strangers = 0; // voxels that left without having entered
};

template <class T> using Processor2D = SlidingWindowProcessor2D<View<T>, Contents<T>>;
template <class T> using Processor3D = SlidingWindowProcessor3D<View<T>, Contents<T>>;

long planOf(Offset2D const&) { return 0; }
long planOf(Offset3D const& offset) { return offset.z; }

template <class Processor, class T, class Offset, class B>
void expectWindows(HostImage const& image, boost::shared_ptr<BorderCondition<T>> condition,
                   std::vector<Offset> const& offsets, std::vector<B> const& blocks)
{
    auto const view = View<T>::New(static_cast<ImageModel const*>(&image), condition);
    Contents<T> contents;
    Processor processor(view, offsets, &contents);
    for (B const& block : blocks) {
        unsigned long const fillsBefore = contents.fills;
        unsigned long const movedBefore = contents.moved;
        processor.init(block);
        for (Place const& place : placesOf(block)) {
            ASSERT_FALSE(processor.atEnd());
            ASSERT_EQ((Place{static_cast<long>(block.colsBegin()) + processor.column(),
                             static_cast<long>(block.rowsBegin()) + processor.row(),
                             static_cast<long>(block.plansBegin()) + processor.plan()}),
                      place);
            std::vector<T> expected;
            for (Offset const& offset : offsets)
                expected.push_back(conditionAt(*condition, image, place.column + offset.x, place.row + offset.y,
                                               place.plan + planOf(offset), static_cast<long>(block.timeSeriesBegin()),
                                               static_cast<long>(block.spectralSeriesBegin())));
            std::sort(expected.begin(), expected.end());
            ASSERT_EQ(contents.sorted(), expected);
            ++processor;
        }
        EXPECT_TRUE(processor.atEnd());
        unsigned long const rows = block.getNbRows() * block.getNbPlans();
        EXPECT_EQ(contents.fills - fillsBefore, rows);
        EXPECT_EQ(contents.moved - movedBefore, rows * (block.getNbCols() - 1) * processor.offsets().entering().size());
    }
    EXPECT_EQ(contents.strangers, 0u);
}

std::vector<std::vector<Offset2D>> windows2d()
{
    return {{{0, 0}},
            kernel::generateSquareOffset2DCollection(1),
            kernel::generateDiskOffset2DCollection(3),
            {{0, -2}, {0, -1}, {0, 0}, {0, 2}},                   // one column, with a hole
            {{-2, 0}, {-1, 0}, {1, 0}, {2, 0}, {0, 1}},           // a hole in a row
            {{3, 2}, {4, 2}, {5, 3}},                             // away from the centre
            {{-30, 0}, {0, 0}, {1, 0}, {1, 0}, {2, -9}, {3, 0}}}; // wider than any block, and one offset twice
}

TEST(SlidingOffsetsTest, areWhatANewWindowHasMoreAndLess)
{
    SlidingOffsets<Offset2D> const one({{0, 0}});
    EXPECT_EQ(one.all(), std::vector<Offset2D>({{0, 0}}));
    EXPECT_EQ(one.entering(), std::vector<Offset2D>({{0, 0}}));
    EXPECT_EQ(one.leaving(), std::vector<Offset2D>({{-1, 0}}));

    SlidingOffsets<Offset2D> const square(kernel::generateSquareOffset2DCollection(2));
    EXPECT_EQ(square.entering(), std::vector<Offset2D>({{2, -2}, {2, -1}, {2, 0}, {2, 1}, {2, 2}}));
    EXPECT_EQ(square.leaving(), std::vector<Offset2D>({{-3, -2}, {-3, -1}, {-3, 0}, {-3, 1}, {-3, 2}}));
    EXPECT_EQ(square.lowest().x, -3);
    EXPECT_EQ(square.lowest().y, -2);
    EXPECT_EQ(square.highest().x, 2);

    SlidingOffsets<Offset2D> const holed({{-1, 0}, {1, 0}});
    EXPECT_EQ(holed.entering(), std::vector<Offset2D>({{-1, 0}, {1, 0}}));
    EXPECT_EQ(holed.leaving(), std::vector<Offset2D>({{-2, 0}, {0, 0}}));

    std::vector<Offset2D> const column = {{1, -1}, {1, 0}, {1, 4}};
    EXPECT_EQ(SlidingOffsets<Offset2D>(column).entering(), column);
    EXPECT_EQ(SlidingOffsets<Offset2D>(column).leaving(), std::vector<Offset2D>({{0, -1}, {0, 0}, {0, 4}}));

    SlidingOffsets<Offset3D> const cube(kernel::generateCubeOffset3DCollection(1));
    EXPECT_EQ(cube.entering().size(), 9u);
    EXPECT_EQ(cube.leaving().front(), (Offset3D{-2, -1, -1}));

    SlidingOffsets<Offset3D> const none((std::vector<Offset3D>()));
    EXPECT_TRUE(none.entering().empty());
    EXPECT_EQ(none.lowest().x, 0);
}

TEST(SlidingWindowProcessorTest, holdsTheWindowAtEachVoxelOfAPlan)
{
    Shape const shape{21, 6, 2, 1, 2};
    forEachVoxelType([&]<class T>() {
        HostImage const image(randomPictureBetween<T>(shape, 3, T(1), T(100)));
        auto blocks = blocksOfAPlan(shape, 1, 0, 1);
        if (!std::is_same_v<T, short>)
            blocks.erase(blocks.begin() + 2, blocks.end());
        for (auto const& condition : allConditions<T>())
            for (auto const& window : windows2d())
                expectWindows<Processor2D<T>>(image, condition, window, blocks);
    });
}

TEST(SlidingWindowProcessorTest, holdsTheWindowAtEachVoxelOfAVolume)
{
    Shape const shape{21, 6, 4, 2, 1};
    std::vector<std::vector<Offset3D>> const windows = {{{0, 0, 0}},
                                                        kernel::generateCubeOffset3DCollection(1),
                                                        kernel::generateSphereOffset3DCollection(2),
                                                        {{0, -2, 1}, {0, 0, -1}, {2, 0, 7}}};
    forEachVoxelType([&]<class T>() {
        HostImage const image(randomPictureBetween<T>(shape, 4, T(1), T(100)));
        auto blocks = blocksOfAVolume(shape, 1, 0);
        if (!std::is_same_v<T, float>)
            blocks.erase(blocks.begin() + 1, blocks.end());
        for (auto const& window : windows)
            expectWindows<Processor3D<T>>(image, MirrorBorderCondition<T>::New(), window, blocks);
    });
}

TEST(SlidingWindowProcessorTest, holdsNothingUnderAnEmptyWindow)
{
    HostImage const image(randomPicture<int>(Shape{5, 3, 2}, 1));
    expectWindows<Processor2D<int>>(image, MirrorBorderCondition<int>::New(), std::vector<Offset2D>(),
                                    std::vector<Block2d>{block2d(0, 5, 0, 3)});
    expectWindows<Processor3D<int>>(image, MirrorBorderCondition<int>::New(), std::vector<Offset3D>(),
                                    std::vector<Block3d>{block3d(1, 5, 0, 3, 0, 2)});
}

TEST(SlidingWindowProcessorTest, isCopiedWithItsOffsetsButNotWithItsRows)
{
    HostImage const image(randomPictureBetween<short>(Shape{9, 7}, 5, -50, 50));
    auto const view = View<short>::New(static_cast<ImageModel const*>(&image), MirrorBorderCondition<short>::New());
    Contents<short> first, second;
    Processor2D<short> const configured(view, kernel::generateSquareOffset2DCollection(1), &first);
    EXPECT_FALSE(configured.isInitialized());

    Processor2D<short> one(configured);
    one.init(block2d(0, 9, 0, 7));
    for (int step = 0; step < 13; ++step)
        ++one;
    auto const before = first.sorted();
    Processor2D<short> two(one);
    EXPECT_FALSE(two.isInitialized());
    two.setComputer(&second);
    two.init(block2d(2, 7, 3, 6));
    for (int step = 0; step < 4; ++step)
        ++two;
    EXPECT_EQ(first.sorted(), before);
    EXPECT_EQ(one.column(), 4);
    EXPECT_EQ(one.row(), 1);
    ++one; // with the rows of its own
    ++two;
    EXPECT_EQ(first.strangers + second.strangers, 0u);

    std::vector<Processor2D<short>> several(3);
    several[1] = one;
    EXPECT_FALSE(several[1].isInitialized());
    several[1].setComputer(&second);
    several[1].init(block2d(2, 7, 3, 6));
    for (int step = 0; step < 5; ++step)
        ++several[1];
    auto const there = second.sorted();
    two.init(block2d(2, 7, 4, 6));
    EXPECT_EQ(second.sorted(), there);
}

/// Pairs each voxel of a window with that of the shifted window, as measures of co-occurrence do.
struct Values
{
    void clear() { values.clear(); }
    void add(int const* voxel) { values.push_back(*voxel); }
    void update(int const* const* entering, int const* const* leaving, unsigned long count)
    {
        entered.clear();
        left.clear();
        for (unsigned long i = 0; i < count; ++i) {
            entered.push_back(*entering[i]);
            left.push_back(*leaving[i]);
        }
    }
    std::vector<int> values, entered, left;
};

struct Pairs
{
    void clear()
    {
        pairs.clear();
        next = 0;
    }
    void add(int const* voxel) { ++pairs[{*voxel, shifted->values[next++]}]; }
    void update(int const* const* entering, int const* const* leaving, unsigned long count)
    {
        for (unsigned long i = 0; i < count; ++i) {
            ++pairs[{*entering[i], shifted->entered[i]}];
            if (--pairs[{*leaving[i], shifted->left[i]}] == 0)
                pairs.erase({*leaving[i], shifted->left[i]});
        }
    }
    Values* shifted;
    std::map<std::pair<int, int>, int> pairs;
    std::size_t next = 0;
};

TEST(SlidingWindowProcessorTest, pairsTheVoxelsOfAWindowAndOfItsShift)
{
    Picture<int> picture(Shape{12, 9});
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        picture.voxels[i] = static_cast<int>(i);
    HostImage const image(picture);
    auto const condition = MirrorBorderCondition<int>::New();
    auto const view = View<int>::New(static_cast<ImageModel const*>(&image), condition);
    std::vector<Offset2D> const window = {{2, 1}, {-1, 0}, {0, 0}, {1, 0}, {0, -2}, {0, 1}};
    for (Offset2D const move : {Offset2D{1, 0}, Offset2D{-2, 1}, Offset2D{0, 3}}) {
        std::vector<Offset2D> moved = window;
        kernel::shift(moved, move);
        Values values;
        Pairs pairs;
        pairs.shifted = &values;
        SlidingWindowProcessor2D<View<int>, Values> accessor(view, moved, &values);
        SlidingWindowProcessor2D<View<int>, Pairs> computer(view, window, &pairs);
        Block2d const block = block2d(0, 12, 2, 9);
        accessor.init(block);
        computer.init(block);
        for (Place const& place : placesOf(block)) {
            std::map<std::pair<int, int>, int> expected;
            for (Offset2D const& offset : window) {
                auto const at = [&](long x, long y) {
                    return conditionAt(*condition, image, place.column + x, place.row + y, 0, 0, 0);
                };
                ++expected[{at(offset.x, offset.y), at(offset.x + move.x, offset.y + move.y)}];
            }
            ASSERT_EQ(pairs.pairs, expected);
            ++accessor;
            ++computer;
        }
    }
}

} // namespace
} // namespace qel::test
