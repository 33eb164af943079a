#include <qel/access/Block2d.h>

#include <gtest/gtest.h>
#include <tbb/concurrent_vector.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace qel::access {
namespace {

using Box = std::array<unsigned long, 4>; // rows begin and end, columns begin and end

Box boxOf(Block const& block) { return {block.rowsBegin(), block.rowsEnd(), block.colsBegin(), block.colsEnd()}; }

// Rows and columns from 0, with the default grains.
Block2d blockOf(unsigned long rows, unsigned long cols) { return {{rows, 0, 10}, {cols, 0, 1024}, 0, 0, 0}; }

void splitAll(Block2d block, std::vector<Block2d>& leaves)
{
    if (!block.is_divisible()) {
        leaves.push_back(block);
        return;
    }
    Block2d right(block, tbb::split());
    splitAll(block, leaves);
    splitAll(right, leaves);
}

std::vector<Block2d> leavesOf(Block2d const& block)
{
    std::vector<Block2d> leaves;
    splitAll(block, leaves);
    return leaves;
}

std::vector<Box> sortedBoxes(std::vector<Block2d> const& blocks)
{
    std::vector<Box> boxes;
    for (Block2d const& block : blocks)
        boxes.push_back(boxOf(block));
    std::sort(boxes.begin(), boxes.end());
    return boxes;
}

std::vector<Block2d> leavesOfLoop(Block2d const& block)
{
    tbb::concurrent_vector<Block2d> leaves;
    tbb::parallel_for(
        block, [&leaves](Block2d const& leaf) { leaves.push_back(leaf); }, tbb::simple_partitioner());
    return {leaves.begin(), leaves.end()};
}

TEST(Block2dTest, isABoxOfRowsAndColumnsAtThreeIndices)
{
    Block2d const block({13, 3, 10}, {27, 7, 1024}, 4, 5, 6);
    Block const& box = block;
    EXPECT_EQ(box.rowsBegin(), 3u);
    EXPECT_EQ(box.rowsEnd(), 13u);
    EXPECT_EQ(box.getNbRows(), 10u);
    EXPECT_EQ(box.colsBegin(), 7u);
    EXPECT_EQ(box.colsEnd(), 27u);
    EXPECT_EQ(box.getNbCols(), 20u);
    EXPECT_EQ(box.plansBegin(), 4u);
    EXPECT_EQ(box.plansEnd(), 5u);
    EXPECT_EQ(box.getNbPlans(), 1u);
    EXPECT_EQ(box.timeSeriesBegin(), 5u);
    EXPECT_EQ(box.timeSeriesEnd(), 6u);
    EXPECT_EQ(box.getNbTimeSeries(), 1u);
    EXPECT_EQ(box.spectralSeriesBegin(), 6u);
    EXPECT_EQ(box.spectralSeriesEnd(), 7u);
    EXPECT_EQ(box.getNbSpectralSeries(), 1u);
    EXPECT_EQ(block.getNumOfVoxels(), 200u);
}

TEST(Block2dTest, isEmptyWhenAnyRangeIs)
{
    EXPECT_FALSE(blockOf(1, 1).empty());
    EXPECT_TRUE(blockOf(0, 1).empty());
    EXPECT_TRUE(blockOf(1, 0).empty());
    EXPECT_TRUE(Block2d({3, 3, 10}, {5, 0, 10}, 0, 0, 0).empty());
    EXPECT_TRUE(Block2d({5, 0, 10}, {2, 3, 10}, 0, 0, 0).empty());
}

TEST(Block2dTest, isDivisibleWhenAnyRangeIsLongerThanItsGrain)
{
    EXPECT_FALSE(blockOf(3, 5).is_divisible());
    EXPECT_FALSE(blockOf(10, 1024).is_divisible());
    EXPECT_TRUE(blockOf(11, 1024).is_divisible());
    EXPECT_TRUE(blockOf(10, 1025).is_divisible());
    EXPECT_TRUE(blockOf(1, 1025).is_divisible());
    EXPECT_FALSE(Block2d({110, 100, 10}, {2000, 1000, 1024}, 0, 0, 0).is_divisible());
}

TEST(Block2dTest, cutsTheAxisWithTheGreatestRatioOfSizeToGrain)
{
    Block2d rowsLonger = blockOf(40, 2048);
    Block2d const lowerRows(rowsLonger, tbb::split());
    EXPECT_EQ(boxOf(rowsLonger), (Box{0, 20, 0, 2048}));
    EXPECT_EQ(boxOf(lowerRows), (Box{20, 40, 0, 2048}));

    Block2d colsLonger = blockOf(20, 4096);
    Block2d const rightCols(colsLonger, tbb::split());
    EXPECT_EQ(boxOf(colsLonger), (Box{0, 20, 0, 2048}));
    EXPECT_EQ(boxOf(rightCols), (Box{0, 20, 2048, 4096}));
}

TEST(Block2dTest, cutsRowsOnATie)
{
    Block2d upper = blockOf(20, 2048);
    Block2d const lower(upper, tbb::split());
    EXPECT_EQ(boxOf(upper), (Box{0, 10, 0, 2048}));
    EXPECT_EQ(boxOf(lower), (Box{10, 20, 0, 2048}));
    // One column more, and the tie is broken.
    Block2d left = blockOf(20, 2049);
    Block2d const right(left, tbb::split());
    EXPECT_EQ(boxOf(left), (Box{0, 20, 0, 1024}));
    EXPECT_EQ(boxOf(right), (Box{0, 20, 1024, 2049}));
}

TEST(Block2dTest, comparesInDoublePrecisionWhereIntegersWouldOverflow)
{
    Block2d upper({1ul << 40, 0, 1}, {1ul << 40, 0, 1ul << 30}, 0, 0, 0);
    Block2d const lower(upper, tbb::split());
    EXPECT_EQ(boxOf(upper), (Box{0, 1ul << 39, 0, 1ul << 40}));
    EXPECT_EQ(boxOf(lower), (Box{1ul << 39, 1ul << 40, 0, 1ul << 40}));
}

TEST(Block2dTest, cutsAtTheTruncatedMiddleAndCopiesTheRest)
{
    Block2d upper({18, 7, 10}, {5, 2, 1024}, 4, 5, 6);
    Block2d const lower(upper, tbb::split());
    EXPECT_EQ(boxOf(upper), (Box{7, 12, 2, 5}));
    EXPECT_EQ(boxOf(lower), (Box{12, 18, 2, 5}));
    for (Block2d const& half : {upper, lower}) {
        EXPECT_EQ(half.plansBegin(), 4u);
        EXPECT_EQ(half.timeSeriesBegin(), 5u);
        EXPECT_EQ(half.spectralSeriesBegin(), 6u);
        EXPECT_FALSE(half.is_divisible());
    }
}

TEST(Block2dTest, isOneLeafWhenNoRangeIsAboveItsGrain)
{
    EXPECT_EQ(leavesOf(blockOf(3, 5)).size(), 1u);
    EXPECT_EQ(leavesOfLoop(blockOf(3, 5)).size(), 1u);
    // Both sizes equal their grains: the cross products tie, and still nothing is cut.
    EXPECT_EQ(leavesOf(blockOf(10, 1024)).size(), 1u);
    EXPECT_EQ(leavesOfLoop(blockOf(10, 1024)).size(), 1u);
}

TEST(Block2dTest, cutsOnlyColumnsOfAWideLowBlock)
{
    std::vector<Box> const expected = {{0, 4, 0, 1000}, {0, 4, 1000, 2000}};
    EXPECT_EQ(sortedBoxes(leavesOf(blockOf(4, 2000))), expected);
    EXPECT_EQ(sortedBoxes(leavesOfLoop(blockOf(4, 2000))), expected);
}

TEST(Block2dTest, cutsARangeJustAboveItsGrainIntoNearHalves)
{
    std::vector<Box> const expected = {{0, 5, 0, 1}, {5, 11, 0, 1}};
    EXPECT_EQ(sortedBoxes(leavesOf(blockOf(11, 1))), expected);
    EXPECT_EQ(sortedBoxes(leavesOfLoop(blockOf(11, 1))), expected);
}

TEST(Block2dTest, hasACountOfLeavesThatFollowsFromSizesAndGrains)
{
    // 4096 rows halve nine times to 8, 4096 columns twice to 1024.
    EXPECT_EQ(leavesOf(blockOf(4096, 4096)).size(), 512u * 4);
    EXPECT_EQ(leavesOfLoop(blockOf(4096, 4096)).size(), 512u * 4);
    // 25 rows: 12 and 13, then 6, 6, 6, 7. 3000 columns: 1500 twice, then 750 four times.
    EXPECT_EQ(leavesOf(blockOf(25, 3000)).size(), 4u * 4);
}

TEST(Block2dTest, isCoveredByItsLeavesExactlyOnce)
{
    std::mt19937 random(17);
    for (int round = 0; round < 200; ++round) {
        auto const upTo = [&random](unsigned long limit) { return 1 + random() % limit; };
        unsigned long const rows = upTo(40);
        unsigned long const cols = upTo(60);
        unsigned long const rowGrain = upTo(12);
        unsigned long const colGrain = upTo(20);
        unsigned long const row = random() % 5;
        unsigned long const col = random() % 5;
        Block2d const whole({row + rows, row, rowGrain}, {col + cols, col, colGrain}, 1, 2, 3);
        std::vector<Block2d> const leaves = leavesOf(whole);
        std::vector<int> visits(rows * cols, 0);
        for (Block2d const& leaf : leaves) {
            EXPECT_FALSE(leaf.empty());
            EXPECT_LE(leaf.getNbRows(), rowGrain);
            EXPECT_LE(leaf.getNbCols(), colGrain);
            for (unsigned long y = leaf.rowsBegin(); y < leaf.rowsEnd(); ++y)
                for (unsigned long x = leaf.colsBegin(); x < leaf.colsEnd(); ++x)
                    ++visits.at((y - row) * cols + (x - col));
        }
        EXPECT_TRUE(std::all_of(visits.begin(), visits.end(), [](int count) { return count == 1; }));
        EXPECT_EQ(sortedBoxes(leaves), sortedBoxes(leavesOfLoop(whole)));
    }
}

TEST(Block2dTest, callsNoBodyWhenItIsEmpty)
{
    EXPECT_TRUE(leavesOfLoop(blockOf(0, 5000)).empty());
    EXPECT_TRUE(leavesOfLoop(blockOf(5000, 0)).empty());
}

TEST(Block2dTest, takesAGrainOfZeroAsOne) { EXPECT_EQ(leavesOf(Block2d({3, 0, 0}, {2, 0, 0}, 0, 0, 0)).size(), 6u); }

} // namespace
} // namespace qel::access
