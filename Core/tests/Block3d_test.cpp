#include <qel/access/Block3d.h>

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

using Box = std::array<unsigned long, 6>; // begin and end of plans, rows, columns

Box boxOf(Block const& block)
{
    return {block.plansBegin(), block.plansEnd(),  block.rowsBegin(),
            block.rowsEnd(),    block.colsBegin(), block.colsEnd()};
}

// From 0, with the default grains.
Block3d blockOf(unsigned long plans, unsigned long rows, unsigned long cols)
{
    return {{plans, 0, 10}, {rows, 0, 10}, {cols, 0, 1024}, 0, 0};
}

char const* cutAxis(Block3d block)
{
    Block3d const before = block;
    Block3d const right(block, tbb::split());
    EXPECT_EQ(block.getNumOfVoxels() + right.getNumOfVoxels(), before.getNumOfVoxels());
    if (right.plansBegin() != before.plansBegin())
        return "plans";
    return right.rowsBegin() != before.rowsBegin() ? "rows" : "columns";
}

void splitAll(Block3d block, std::vector<Block3d>& leaves)
{
    if (!block.is_divisible()) {
        leaves.push_back(block);
        return;
    }
    Block3d right(block, tbb::split());
    splitAll(block, leaves);
    splitAll(right, leaves);
}

std::vector<Block3d> leavesOf(Block3d const& block)
{
    std::vector<Block3d> leaves;
    splitAll(block, leaves);
    return leaves;
}

std::vector<Box> sortedBoxes(std::vector<Block3d> const& blocks)
{
    std::vector<Box> boxes;
    for (Block3d const& block : blocks)
        boxes.push_back(boxOf(block));
    std::sort(boxes.begin(), boxes.end());
    return boxes;
}

std::vector<Block3d> leavesOfLoop(Block3d const& block)
{
    tbb::concurrent_vector<Block3d> leaves;
    tbb::parallel_for(
        block, [&leaves](Block3d const& leaf) { leaves.push_back(leaf); }, tbb::simple_partitioner());
    return {leaves.begin(), leaves.end()};
}

TEST(Block3dTest, isABoxOfPlansRowsAndColumnsAtTwoIndices)
{
    Block3d const block({9, 2, 10}, {13, 3, 10}, {27, 7, 1024}, 5, 6);
    Block const& box = block;
    EXPECT_EQ(box.plansBegin(), 2u);
    EXPECT_EQ(box.plansEnd(), 9u);
    EXPECT_EQ(box.getNbPlans(), 7u);
    EXPECT_EQ(box.rowsBegin(), 3u);
    EXPECT_EQ(box.rowsEnd(), 13u);
    EXPECT_EQ(box.getNbRows(), 10u);
    EXPECT_EQ(box.colsBegin(), 7u);
    EXPECT_EQ(box.colsEnd(), 27u);
    EXPECT_EQ(box.getNbCols(), 20u);
    EXPECT_EQ(box.timeSeriesBegin(), 5u);
    EXPECT_EQ(box.timeSeriesEnd(), 6u);
    EXPECT_EQ(box.getNbTimeSeries(), 1u);
    EXPECT_EQ(box.spectralSeriesBegin(), 6u);
    EXPECT_EQ(box.spectralSeriesEnd(), 7u);
    EXPECT_EQ(box.getNbSpectralSeries(), 1u);
    EXPECT_EQ(block.getNumOfVoxels(), 1400u);
}

TEST(Block3dTest, isEmptyWhenAnyRangeIs)
{
    EXPECT_FALSE(blockOf(1, 1, 1).empty());
    EXPECT_TRUE(blockOf(0, 1, 1).empty());
    EXPECT_TRUE(blockOf(1, 0, 1).empty());
    EXPECT_TRUE(blockOf(1, 1, 0).empty());
    EXPECT_TRUE(Block3d({1, 0, 1}, {1, 2, 1}, {1, 0, 1}, 0, 0).empty());
}

TEST(Block3dTest, isDivisibleWhenAnyRangeIsLongerThanItsGrain)
{
    EXPECT_FALSE(blockOf(10, 10, 1024).is_divisible());
    EXPECT_TRUE(blockOf(11, 10, 1024).is_divisible());
    EXPECT_TRUE(blockOf(10, 11, 1024).is_divisible());
    EXPECT_TRUE(blockOf(10, 10, 1025).is_divisible());
}

TEST(Block3dTest, cutsTheAxisWithTheGreatestRatioOfSizeToGrain)
{
    EXPECT_STREQ(cutAxis(blockOf(40, 30, 2048)), "plans");
    EXPECT_STREQ(cutAxis(blockOf(40, 20, 3072)), "plans");
    EXPECT_STREQ(cutAxis(blockOf(30, 40, 2048)), "rows");
    EXPECT_STREQ(cutAxis(blockOf(20, 40, 3072)), "rows");
    EXPECT_STREQ(cutAxis(blockOf(30, 20, 4096)), "columns");
    EXPECT_STREQ(cutAxis(blockOf(20, 30, 4096)), "columns");
}

TEST(Block3dTest, takesPlansBeforeRowsOnATie)
{
    EXPECT_STREQ(cutAxis(blockOf(20, 20, 1024)), "plans");
    EXPECT_STREQ(cutAxis(blockOf(20, 20, 2048)), "plans");
    EXPECT_STREQ(cutAxis(blockOf(20, 20, 2049)), "columns");
}

TEST(Block3dTest, neverTakesColumnsOnATie)
{
    EXPECT_STREQ(cutAxis(blockOf(10, 20, 2048)), "rows");
    EXPECT_STREQ(cutAxis(blockOf(10, 20, 2049)), "columns");
    EXPECT_STREQ(cutAxis(blockOf(20, 10, 2048)), "plans");
    EXPECT_STREQ(cutAxis(blockOf(20, 10, 2049)), "columns");
}

TEST(Block3dTest, comparesInDoublePrecisionWhereIntegersWouldOverflow)
{
    EXPECT_STREQ(cutAxis(Block3d({1ul << 40, 0, 1ul << 30}, {1ul << 20, 0, 1}, {1, 0, 1}, 0, 0)), "rows");
    EXPECT_STREQ(cutAxis(Block3d({1ul << 30, 0, 1ul << 33}, {1, 0, 1}, {1ul << 31, 0, 1}, 0, 0)), "columns");
}

TEST(Block3dTest, cutsAtTheTruncatedMiddleAndCopiesTheRest)
{
    Block3d front({18, 7, 10}, {5, 2, 10}, {9, 8, 1024}, 5, 6);
    Block3d const back(front, tbb::split());
    EXPECT_EQ(boxOf(front), (Box{7, 12, 2, 5, 8, 9}));
    EXPECT_EQ(boxOf(back), (Box{12, 18, 2, 5, 8, 9}));
    for (Block3d const& half : {front, back}) {
        EXPECT_EQ(half.timeSeriesBegin(), 5u);
        EXPECT_EQ(half.spectralSeriesBegin(), 6u);
        EXPECT_FALSE(half.is_divisible());
    }
}

TEST(Block3dTest, hasACountOfLeavesThatFollowsFromSizesAndGrains)
{
    EXPECT_EQ(leavesOf(blockOf(3, 3, 5)).size(), 1u);
    EXPECT_EQ(leavesOf(blockOf(10, 10, 1024)).size(), 1u);
    EXPECT_EQ(leavesOf(blockOf(4, 4, 2000)).size(), 2u);
    EXPECT_EQ(leavesOf(blockOf(11, 1, 1)).size(), 2u);
    // 256 halves five times to 8 in plans and rows; the columns stay whole.
    EXPECT_EQ(leavesOf(blockOf(256, 256, 256)).size(), 32u * 32);
    EXPECT_EQ(leavesOfLoop(blockOf(256, 256, 256)).size(), 32u * 32);
}

TEST(Block3dTest, isCoveredByItsLeavesExactlyOnce)
{
    std::mt19937 random(23);
    for (int round = 0; round < 100; ++round) {
        auto const upTo = [&random](unsigned long limit) { return 1 + random() % limit; };
        unsigned long const plans = upTo(15);
        unsigned long const rows = upTo(20);
        unsigned long const cols = upTo(25);
        unsigned long const planGrain = upTo(6);
        unsigned long const rowGrain = upTo(8);
        unsigned long const colGrain = upTo(10);
        Block3d const whole({3 + plans, 3, planGrain}, {4 + rows, 4, rowGrain}, {5 + cols, 5, colGrain}, 1, 2);
        std::vector<Block3d> const leaves = leavesOf(whole);
        std::vector<int> visits(plans * rows * cols, 0);
        for (Block3d const& leaf : leaves) {
            EXPECT_FALSE(leaf.empty());
            EXPECT_LE(leaf.getNbPlans(), planGrain);
            EXPECT_LE(leaf.getNbRows(), rowGrain);
            EXPECT_LE(leaf.getNbCols(), colGrain);
            for (unsigned long z = leaf.plansBegin(); z < leaf.plansEnd(); ++z)
                for (unsigned long y = leaf.rowsBegin(); y < leaf.rowsEnd(); ++y)
                    for (unsigned long x = leaf.colsBegin(); x < leaf.colsEnd(); ++x)
                        ++visits.at(((z - 3) * rows + y - 4) * cols + x - 5);
        }
        EXPECT_TRUE(std::all_of(visits.begin(), visits.end(), [](int count) { return count == 1; }));
        EXPECT_EQ(sortedBoxes(leaves), sortedBoxes(leavesOfLoop(whole)));
    }
}

TEST(Block3dTest, callsNoBodyWhenItIsEmpty)
{
    EXPECT_TRUE(leavesOfLoop(blockOf(0, 50, 5000)).empty());
    EXPECT_TRUE(leavesOfLoop(blockOf(50, 0, 5000)).empty());
    EXPECT_TRUE(leavesOfLoop(blockOf(50, 50, 0)).empty());
}

} // namespace
} // namespace qel::access
