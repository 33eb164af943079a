#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/tests/IteratorSupport.h"

#include <qel/AlgoBorderInfluence.h>
#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>
#include <qel/access/Region.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::OverlapBorder;
using access::View;

template <class Row> auto voxelsOf(Row const& row)
{
    return std::vector<typename Row::VoxelType>(row.data(), row.data() + row.size());
}

// ---- reading

template <class V> void expectRowsOneVoxelWider()
{
    using T = typename V::VoxelType;
    auto const picture = randomPicture<T>({11, 6, 3, 2, 2}, 17);
    HostImage const image(picture);
    auto const view = V::New(&image, FixedBorderCondition<T>::New(T(77)));
    auto const cache = view->createRowCacheRead(2);
    for (Block3d const& block :
         {Block3d({2, 0, 1}, {4, 0, 1}, {11, 0, 1}, 0, 1), Block3d({3, 1, 1}, {6, 2, 1}, {7, 3, 1}, 1, 0),
          Block3d({3, 2, 1}, {6, 5, 1}, {11, 10, 1}, 1, 1)})
        for (long plan = -1; plan <= static_cast<long>(block.getNbPlans()); ++plan)
            for (long row = -1; row <= static_cast<long>(block.getNbRows()); ++row) {
                unsigned long const count = block.getNbCols() + 2;
                auto const& fetched = cache->fetchRowInBlock(1, count, block, -1, row, plan, 0, 0);
                ASSERT_EQ(fetched.size(), count);
                for (long i = 0; i < static_cast<long>(count); ++i)
                    ASSERT_TRUE(
                        sameValue(fetched.data()[i], voxelAt(picture, static_cast<long>(block.colsBegin()) - 1 + i,
                                                             static_cast<long>(block.rowsBegin()) + row,
                                                             static_cast<long>(block.plansBegin()) + plan,
                                                             static_cast<long>(block.timeSeriesBegin()),
                                                             static_cast<long>(block.spectralSeriesBegin()), T(77))))
                        << i << ' ' << row << ' ' << plan;
            }
}

TEST(RowsTest, widerThanTheBlockHoldNeighboursAndWhatStandsOutside)
{
    forEachVoxelType([]<class T>() { expectRowsOneVoxelWider<View<T>>(); });
}

TEST(RowsTest, ofPacketsDoTheSame)
{
#define QEL_TEST(T) expectRowsOneVoxelWider<access::PacketView<T>>();
    QEL_FOR_EACH_PACKET_TYPE(QEL_TEST)
#undef QEL_TEST
}

TEST(RowsTest, areFetchedAtAbsoluteCoordinatesToo)
{
    auto const picture = randomPicture<short>({5, 4, 3, 2, 2}, 4);
    HostImage const image(picture);
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(9));
    auto const cache = view->createRowCacheRead(1);
    auto const& row = cache->fetchRowInImage(0, 7, -1, 3, 2, 1, 1);
    EXPECT_EQ(&row, &cache->getRow(0));
    std::vector<short> expected{9};
    for (unsigned long column = 0; column < 5; ++column)
        expected.push_back(picture.at(column, 3, 2, 1, 1));
    expected.push_back(9);
    EXPECT_EQ(voxelsOf(row), expected);
    EXPECT_EQ(voxelsOf(cache->fetchRowInImage(0, 2, 0, 4, 2, 1, 1)), (std::vector<short>{9, 9}));
}

TEST(RowsTest, takeSeriesRelativeToTheBlock)
{
    auto const picture = randomPicture<short>({2, 1, 1, 4, 3}, 4);
    HostImage const image(picture);
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(9));
    auto const cache = view->createRowCacheRead(1);
    Block2d const block({1, 0, 1}, {2, 0, 1}, 0, 1, 1);
    EXPECT_EQ(cache->fetchRowInBlock(0, 2, block, 0, 0, 0, 2, 1).data()[1], picture.at(1, 0, 0, 3, 2));
    EXPECT_EQ(cache->fetchRowInBlock(0, 2, block, 0, 0, 0, -1, -1).data()[1], picture.at(1, 0, 0, 0, 0));
    EXPECT_EQ(cache->fetchRowInBlock(0, 2, block, 0, 0, 0, -2, 0).data()[1], 9);
}

TEST(RowsTest, toBeWrittenHoldThePresentVoxelsAndTheirPlace)
{
    auto const picture = randomPicture<int>({5, 4, 3, 2, 2}, 8);
    HostImage image(picture);
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(9));
    auto const cache = view->createRowCacheReadWrite(2);
    Block3d const block({3, 1, 1}, {4, 1, 1}, {5, 2, 1}, 1, 1);
    auto const& row = cache->fetchRowInBlock(1, 4, block, -1, 2, 1, -1, 0);
    EXPECT_EQ(voxelsOf(row), (std::vector{picture.at(1, 3, 2, 0, 1), picture.at(2, 3, 2, 0, 1),
                                          picture.at(3, 3, 2, 0, 1), picture.at(4, 3, 2, 0, 1)}));
    EXPECT_EQ(row.getPosition().column, 1);
    EXPECT_EQ(row.getPosition().row, 3);
    EXPECT_EQ(row.getPosition().plan, 2);
    EXPECT_EQ(row.getPosition().timeSeries, 0);
    EXPECT_EQ(row.getPosition().spectralSeries, 1);
}

TEST(RowsTest, takenWithoutReadingKeepWhatTheSlotHeld)
{
    HostImage image(Picture<int>({6, 2}, 5));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(9));
    auto const cache = view->createRowCacheReadWrite(1);
    Block2d const block({2, 0, 1}, {6, 0, 1}, 0, 0, 0);
    image.forgetCalls();
    auto& row = cache->getRowInBlock(0, 5, block, 1, 1, 0, 0, 0);
    EXPECT_EQ(voxelsOf(row), (std::vector<int>(5, 0)));
    for (int i = 0; i < 5; ++i)
        row.data()[i] = i + 1;
    int const* const memory = row.data();
    EXPECT_EQ(voxelsOf(cache->getRowInBlock(0, 3, block, 0, 0, 0, 0, 0)), (std::vector{1, 2, 3}));
    EXPECT_EQ(voxelsOf(cache->getRowInBlock(0, 5, block, 0, 0, 0, 0, 0)), (std::vector{1, 2, 3, 0, 0}));
    EXPECT_EQ(row.data(), memory);
    EXPECT_EQ(image.callsOf(READ_ROW), 0u);
    EXPECT_EQ(row.getPosition().row, 0);
    row.writeRow(block, OverlapBorder());
    EXPECT_TRUE(samePicture(Picture<int>({6, 2}, {1, 2, 3, 0, 0, 5, 5, 5, 5, 5, 5, 5}), image));
}

TEST(RowsTest, ofPacketsAreAligned)
{
    HostImage const image(Picture<short>({50, 1}));
    auto const view = access::PacketView<short>::New(&image, FixedBorderCondition<short>::New(0));
    auto const cache = view->createRowCacheRead(5);
    Block2d const block({1, 0, 1}, {50, 0, 1}, 0, 0, 0);
    for (unsigned long slot = 0; slot < 5; ++slot)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(
                      cache->fetchRowInBlock(slot, 10 * slot + 3, block, -1, 0, 0, 0, 0).data()) %
                      16,
                  0u);
}

TEST(RowsTest, ofAPlanAreMadeWhenAskedForAndStay)
{
    auto const picture = randomPicture<int>({5, 4, 3}, 8);
    HostImage image(picture);
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(9));
    auto const cache = view->createPlanCacheRead(2);
    Block3d const block({3, 1, 1}, {3, 1, 1}, {5, 0, 1}, 0, 0);
    auto& plan = cache->fetchPlanInBlock(1, 7, 4, block, -1, -1, 1, 0, 0);
    EXPECT_EQ(&plan, &cache->getPlan(1));
    EXPECT_EQ(plan.getSlot(), 1u);
    EXPECT_EQ(plan.getRowCount(), 4u);
    EXPECT_EQ(plan.getNumOfRows(), 4u);
    for (unsigned long row = 0; row < 4; ++row) {
        EXPECT_EQ(plan.getRow(row).getSlot(), row);
        for (long i = 0; i < 7; ++i)
            EXPECT_EQ(plan.getRow(row).data()[i], voxelAt(picture, i - 1, static_cast<long>(row), 2, 0, 0, 9));
    }
    cache->fetchPlanInBlock(1, 2, 2, block, 0, 0, 0, 0, 0);
    EXPECT_EQ(plan.getRowCount(), 2u);
    EXPECT_EQ(plan.getNumOfRows(), 4u);
    EXPECT_EQ(plan.getRow(0).size(), 2u);
    EXPECT_EQ(plan.getRow(0).data()[1], picture.at(1, 1, 1));
    EXPECT_EQ(cache->getPlan(0).getNumOfRows(), 0u);

    auto const output = view->createPlanCacheReadWrite(1);
    image.forgetCalls();
    auto& taken = output->getPlanInBlock(0, 5, 3, block, 0, -1, 1, 0, 0);
    EXPECT_EQ(image.callsOf(READ_ROW), 0u);
    EXPECT_EQ(taken.getRowCount(), 3u);
    EXPECT_EQ(taken.getRow(2).getPosition().row, 2);
    EXPECT_EQ(taken.getRow(2).getPosition().plan, 2);
    auto& fetched = output->fetchPlanInBlock(0, 5, 3, block, 0, -1, 1, 0, 0);
    EXPECT_EQ(&fetched, &taken);
    EXPECT_EQ(fetched.getRow(1).data()[3], picture.at(3, 1, 2));
}

TEST(RowsTest, passOnWhatTheImageFailsWith)
{
    HostImage image(QEL_INT32, {5, 2});
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(9));
    auto const cache = view->createRowCacheReadWrite(1);
    Block2d const block({2, 0, 1}, {5, 0, 1}, 0, 0, 0);
    image.failOn(READ_ROW);
    EXPECT_QEL_THROW(cache->fetchRowInBlock(0, 5, block, 0, 0, 0, 0, 0), UnexpectedError,
                     "Error in readRowAt implementation, return value is false");
    image.behave().failOn(WRITE_ROW);
    auto& row = cache->getRowInBlock(0, 5, block, 0, 0, 0, 0, 0);
    EXPECT_QEL_THROW(row.writeRow(block, OverlapBorder()), UnexpectedError,
                     "Error in writeRowAt implementation, return value is false");
    try {
        row.writeRow(block, OverlapBorder());
    } catch (UnexpectedError& error) {
        EXPECT_EQ(error.getInfoLevel(0).fileName, String("Core/private/Access/Rows.impl"));
    }
    view->temporizeRowWriting(View<int>::Row::New(row));
    EXPECT_QEL_THROW(view->writeAllTemporizedRows(), UnexpectedError,
                     "Error in writeRowAt implementation, return value is false");
    image.behave().throwOn(WRITE_ROW);
    EXPECT_THROW(row.writeRow(block, OverlapBorder()), HostFailure);
}

// ---- copies

struct RowCopyTest : testing::Test
{
    RowCopyTest()
    {
        row.resize(6);
        row.setPosition({-1, 2, 0, 1, 1});
        for (int i = 0; i < 6; ++i)
            row.data()[i] = 10 + i;
    }
    HostImage image{QEL_INT32, {9, 4, 1, 2, 2}};
    boost::shared_ptr<View<int>> view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    View<int>::Row row{3, view.get()};
};

TEST_F(RowCopyTest, isDeep)
{
    auto const copy = View<int>::Row::New(row);
    row.data()[0] = 99;
    row.setPosition({});
    EXPECT_EQ(voxelsOf(*copy), (std::vector{10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(copy->getPosition().column, -1);
    EXPECT_EQ(copy->getPosition().row, 2);
    EXPECT_EQ(copy->getPosition().timeSeries, 1);
    EXPECT_EQ(copy->getPosition().spectralSeries, 1);
    EXPECT_EQ(copy->getSlot(), 3u);
}

TEST_F(RowCopyTest, ofAPartBeginsAtItsOffset)
{
    auto const part = View<int>::Row::New(row, 3, 2);
    EXPECT_EQ(voxelsOf(*part), (std::vector{12, 13, 14}));
    EXPECT_EQ(part->getPosition().column, 1);
    EXPECT_EQ(part->getPosition().row, 2);
    EXPECT_EQ(View<int>::Row::New(row, 0, 6)->size(), 0u);
    EXPECT_EQ(View<int>::Row::New(row, 6, 0)->size(), 6u);
}

TEST_F(RowCopyTest, refusesAPartThatTheRowLacks)
{
    char const* words = "Impossible use of OuputRow partial copy constructor";
    EXPECT_QEL_THROW(View<int>::Row::New(row, 7, 0), UnexpectedError, words);
    EXPECT_QEL_THROW(View<int>::Row::New(row, 1, 6), UnexpectedError, words);
    EXPECT_QEL_THROW(View<int>::Row::New(row, 0, 7), UnexpectedError, words);
    EXPECT_QEL_THROW(View<int>::Row::New(row, ~0ul, 2), UnexpectedError, words);
    EXPECT_QEL_THROW(View<int>::Row::New(row, 2, ~0ul), UnexpectedError, words);
}

// ---- writing

struct RowWriteTest : testing::Test
{
    /// A row of a block, beginning at any place, full of its columns plus 100.
    View<int>::Row rowAt(access::RowPosition const& position, unsigned long count)
    {
        View<int>::Row row(0, view.get());
        row.resize(count);
        row.setPosition(position);
        for (unsigned long i = 0; i < count; ++i)
            row.data()[i] = static_cast<int>(position.column + static_cast<long>(i)) + 100;
        return row;
    }
    std::vector<int> line(unsigned long row, unsigned long plan = 0)
    {
        auto const picture = fromImage<int>(image);
        std::vector<int> voxels;
        for (unsigned long column = 0; column < picture.shape.columns; ++column)
            voxels.push_back(picture.at(column, row, plan));
        return voxels;
    }

    HostImage image{Picture<int>({8, 20, 3, 1, 1})};
    boost::shared_ptr<View<int>> view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    Block3d const whole{{3, 0, 1}, {20, 0, 1}, {8, 0, 1}, 0, 0};
};

TEST_F(RowWriteTest, dropsRowsOutsideTheImage)
{
    for (access::RowPosition const& position : {access::RowPosition{0, -1, 0, 0, 0},
                                                {0, 20, 0, 0, 0},
                                                {0, 0, -1, 0, 0},
                                                {0, 0, 3, 0, 0},
                                                {0, 0, 0, -1, 0},
                                                {0, 0, 0, 1, 0},
                                                {0, 0, 0, 0, -1},
                                                {0, 0, 0, 0, 1},
                                                {8, 0, 0, 0, 0},
                                                {-8, 0, 0, 0, 0},
                                                {100, 0, 0, 0, 0}}) {
        auto const row = rowAt(position, 8);
        EXPECT_NO_THROW(row.writeRow(whole, OverlapBorder()));
        EXPECT_NO_THROW(row.writeRow(whole, OverlapBorder(AlgoBorderInfluence(1, 1, 1, 0, 0))));
        EXPECT_NO_THROW(row.writeRow(false, 0, 0, 0, 0, 0, 0));
    }
    EXPECT_NO_THROW(rowAt({0, 0, 0, 0, 0}, 0).writeRow(whole, OverlapBorder()));
    EXPECT_EQ(view->getNumOfTemporizedRows(), 0u);
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
}

TEST_F(RowWriteTest, clipsRowsToTheImage)
{
    rowAt({-3, 4, 1, 0, 0}, 6).writeRow(whole, OverlapBorder());
    EXPECT_EQ(line(4, 1), (std::vector{100, 101, 102, 0, 0, 0, 0, 0}));
    rowAt({5, 5, 1, 0, 0}, 6).writeRow(whole, OverlapBorder());
    EXPECT_EQ(line(5, 1), (std::vector{0, 0, 0, 0, 0, 105, 106, 107}));
    rowAt({-2, 6, 1, 0, 0}, 30).writeRow(whole, OverlapBorder());
    EXPECT_EQ(line(6, 1), (std::vector{100, 101, 102, 103, 104, 105, 106, 107}));
    EXPECT_EQ(image.callsOf(WRITE_ROW), 3u);
}

TEST_F(RowWriteTest, withoutMarginsWritesEverythingAtOnce)
{
    for (long row = 0; row < 20; ++row)
        rowAt({0, row, 0, 0, 0}, 8).writeRow(whole, OverlapBorder());
    EXPECT_EQ(image.callsOf(WRITE_ROW), 20u);
    EXPECT_EQ(view->getNumOfTemporizedRows(), 0u);
}

TEST_F(RowWriteTest, rowsBesideASeamWaitUntilAllAreWritten)
{
    OverlapBorder const overlap(AlgoBorderInfluence(0, 1, 0, 0, 0));
    Block3d const upper({3, 0, 1}, {10, 0, 1}, {8, 0, 1}, 0, 0);
    Block3d const lower({3, 0, 1}, {20, 10, 1}, {8, 0, 1}, 0, 0);
    for (long row = 0; row < 20; ++row)
        rowAt({0, row, 0, 0, 0}, 8).writeRow(row < 10 ? upper : lower, overlap);
    for (unsigned long row = 0; row < 20; ++row)
        // The last row waits too: an exclusive end is compared with the last index.
        EXPECT_EQ(line(row)[0], row == 9 || row == 10 || row == 19 ? 0 : 100) << row;
    view->writeAllTemporizedRows();
    for (unsigned long row = 0; row < 20; ++row)
        EXPECT_EQ(line(row)[0], 100) << row;
}

TEST_F(RowWriteTest, aBlockThatEndsOneBeforeTheEdgeDefersNothingThere)
{
    OverlapBorder const overlap(AlgoBorderInfluence(2, 2, 1, 0, 0));
    Block3d const block({2, 0, 1}, {19, 0, 1}, {7, 0, 1}, 0, 0);
    rowAt({0, 18, 1, 0, 0}, 7).writeRow(block, overlap);
    EXPECT_EQ(line(18, 1), (std::vector{100, 101, 102, 103, 104, 105, 106, 0}));
    EXPECT_EQ(view->getNumOfTemporizedRows(), 0u);
}

TEST_F(RowWriteTest, columnsBesideASeamReachTheImageInPieces)
{
    OverlapBorder const overlap(AlgoBorderInfluence(1, 0, 0, 0, 0));
    Block3d const middle({1, 0, 1}, {20, 0, 1}, {7, 2, 1}, 0, 0);
    image.reserve(QEL_INT32, 12, 20, 1, 1, 1);
    view->recomputeCache();
    rowAt({2, 0, 0, 0, 0}, 5).writeRow(middle, overlap);
    int const fill = line(1)[0];
    EXPECT_EQ(line(0), (std::vector{fill, fill, fill, 103, 104, 105, fill, fill, fill, fill, fill, fill}));
    EXPECT_EQ(view->getNumOfTemporizedRows(), 2u);
    view->writeAllTemporizedRows();
    EXPECT_EQ(line(0), (std::vector{fill, fill, 102, 103, 104, 105, 106, fill, fill, fill, fill, fill}));
    EXPECT_EQ(image.callsOf(WRITE_ROW), 3u);
}

TEST_F(RowWriteTest, lowerAndUpperMarginsAreCrossed)
{
    // Reads two columns to the left: the last two columns of a block are read by the block to its right.
    OverlapBorder const overlap(AlgoBorderInfluence(2, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    rowAt({1, 0, 0, 0, 0}, 5).writeRow(Block3d({3, 0, 1}, {20, 0, 1}, {6, 1, 1}, 0, 0), overlap);
    EXPECT_EQ(line(0), (std::vector{0, 101, 102, 103, 0, 0, 0, 0}));
    view->writeAllTemporizedRows();
    EXPECT_EQ(line(0), (std::vector{0, 101, 102, 103, 104, 105, 0, 0}));
}

TEST_F(RowWriteTest, ofABlockNarrowerThanItsMarginsEverythingWaits)
{
    for (unsigned long width : {1ul, 2ul, 3ul})
        for (unsigned long reach : {1ul, 2ul, 5ul}) {
            if (width > 2 * reach)
                continue;
            OverlapBorder const overlap(AlgoBorderInfluence(reach, 0, 0, 0, 0));
            image.forgetCalls();
            Block3d const block({3, 0, 1}, {20, 0, 1}, {3 + width, 3, 1}, 0, 0);
            rowAt({3, 7, 2, 0, 0}, width).writeRow(block, overlap);
            EXPECT_EQ(image.callsOf(WRITE_ROW), 0u) << width << ' ' << reach;
            view->writeAllTemporizedRows();
            for (unsigned long column = 0; column < width; ++column)
                EXPECT_EQ(line(7, 2)[3 + column], static_cast<int>(103 + column));
        }
}

TEST_F(RowWriteTest, plansBesideASeamWaitToo)
{
    OverlapBorder const overlap(AlgoBorderInfluence(0, 0, 1, 0, 0));
    Block3d const block({2, 1, 1}, {20, 0, 1}, {8, 0, 1}, 0, 0);
    rowAt({0, 3, 1, 0, 0}, 8).writeRow(block, overlap);
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
    view->writeAllTemporizedRows();
    EXPECT_EQ(line(3, 1)[7], 107);
}

TEST_F(RowWriteTest, writesAPartOfARowAlone)
{
    using Row = View<int>::Row;
    Block3d const block({3, 0, 1}, {10, 0, 1}, {6, 2, 1}, 0, 0);
    rowAt({1, 3, 0, 0, 0}, 6).writeRow(Row::safeBoxOf(block, OverlapBorder(), *view), 1, 4);
    EXPECT_EQ(line(3), (std::vector{0, 0, 102, 103, 104, 105, 0, 0}));
    OverlapBorder const overlap(AlgoBorderInfluence(1, 1, 0, 0, 0));
    rowAt({1, 9, 0, 0, 0}, 6).writeRow(Row::safeBoxOf(block, overlap, *view), 1, 4);
    view->writeAllTemporizedRows();
    EXPECT_EQ(line(9), (std::vector{0, 0, 102, 103, 104, 105, 0, 0}));
    rowAt({-1, 8, 0, 0, 0}, 4).writeRow(Row::safeBoxOf(block, OverlapBorder(), *view), 0, 1);
    EXPECT_EQ(line(8), (std::vector<int>(8, 0)));
}

/// What is written at once is exactly the box; what waits is exactly the rest.
template <class V> void expectTheBoxIsWrittenAtOnce(unsigned seed)
{
    using T = typename V::VoxelType;
    std::mt19937 random(seed);
    auto const below = [&](unsigned long limit) { return static_cast<unsigned long>(random() % limit); };
    for (int round = 0; round < 60; ++round) {
        Shape const shape{1 + below(12), 1 + below(8), 1 + below(4), 1, 1};
        auto const background = randomPicture<T>(shape, random());
        HostImage image(background);
        auto const view = V::New(&image, FixedBorderCondition<T>::New(T(0)));
        auto const range = [&](unsigned long size) {
            unsigned long const begin = below(size);
            return access::Range{begin + 1 + below(size - begin), begin, 1};
        };
        access::Range const cols = range(shape.columns);
        access::Range const rows = range(shape.rows);
        access::Range const plans = range(shape.plans);
        Block3d const block(plans, rows, cols, 0, 0);
        auto const reach = [&] { return random() % 2 ? below(4) : 0ul; };
        OverlapBorder const overlap(
            AlgoBorderInfluence(reach(), reach(), reach(), reach(), reach(), reach(), 0, 0, 0, 0));
        auto const safe = [](access::Range const& axis, unsigned long lower, unsigned long upper, unsigned long size,
                             long index) {
            long const begin = static_cast<long>(axis.begin + (axis.begin == 0 ? 0 : lower));
            long const end = static_cast<long>(axis.end) - (axis.end == size - 1 ? 0 : static_cast<long>(upper));
            return index >= begin && index < end;
        };

        Picture<T> atOnce = background;
        Picture<T> atEnd = background;
        auto const cache = view->createRowCacheReadWrite(1);
        for (unsigned long plan = plans.begin; plan < plans.end; ++plan)
            for (unsigned long row = rows.begin; row < rows.end; ++row) {
                long const wider = static_cast<long>(below(3));
                unsigned long const count = cols.end - cols.begin + 2 * static_cast<unsigned long>(wider);
                auto& voxels = cache->getRowInBlock(0, count, block, -wider, static_cast<long>(row - rows.begin),
                                                    static_cast<long>(plan - plans.begin), 0, 0);
                for (unsigned long i = 0; i < count; ++i) {
                    T const value = static_cast<T>(random() % 100);
                    voxels.data()[i] = value;
                    long const column = static_cast<long>(cols.begin + i) - wider;
                    if (column < 0 || column >= static_cast<long>(shape.columns))
                        continue;
                    atEnd.at(static_cast<unsigned long>(column), row, plan) = value;
                    if (safe(cols, overlap.colsLower, overlap.colsUpper, shape.columns, column) &&
                        safe(rows, overlap.rowsLower, overlap.rowsUpper, shape.rows, static_cast<long>(row)) &&
                        safe(plans, overlap.plansLower, overlap.plansUpper, shape.plans, static_cast<long>(plan)))
                        atOnce.at(static_cast<unsigned long>(column), row, plan) = value;
                }
                voxels.writeRow(block, overlap);
            }
        ASSERT_TRUE(samePicture(atOnce, image)) << "round " << round << ", seed " << seed;
        view->writeAllTemporizedRows();
        ASSERT_TRUE(samePicture(atEnd, image)) << "round " << round << ", seed " << seed;
    }
}

TEST_F(RowWriteTest, writesTheSafeBoxAtOnceAndTheRestLater)
{
    forEachVoxelType([]<class T>() { expectTheBoxIsWrittenAtOnce<View<T>>(31); });
#define QEL_TEST(T) expectTheBoxIsWrittenAtOnce<access::PacketView<T>>(32);
    QEL_FOR_EACH_PACKET_TYPE(QEL_TEST)
#undef QEL_TEST
}

} // namespace
} // namespace qel::test
