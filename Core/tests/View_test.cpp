#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/Access/View.h"
#include "Core/private/ImageModelProxy.h"
#include "Core/private/ImageModelSizeProxy.h"
#include "Core/tests/Support/Support.h"

#include <qel/ImageModelAdapter.h>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <tbb/parallel_for.h>

#include <vector>

namespace qel::test {
namespace {

using access::FixedBorderCondition;
using access::View;

TEST(ViewTest, refusesAnImageOfAnotherVoxelType)
{
    forEachVoxelTypePair([]<class A, class B>() {
        HostImage image(VoxelTypeOf<B>::value, {3, 2});
        auto const condition = FixedBorderCondition<A>::New(A(0));
        if (VoxelTypeOf<A>::value == VoxelTypeOf<B>::value) {
            EXPECT_NO_THROW(View<A>::New(&image, condition));
            return;
        }
        char const* words = "Types do not correspond in CheckTypeEquivalence";
        EXPECT_QEL_THROW(View<A>::New(&image, condition), UnexpectedError, words);
        EXPECT_QEL_THROW(View<A>::New(static_cast<ImageModel const*>(&image), condition), UnexpectedError, words);
    });
    HostImage complex(QEL_COMPLEX_FLOAT32, {3, 2});
    EXPECT_THROW(View<float>::New(&complex, FixedBorderCondition<float>::New(0)), UnexpectedError);
}

TEST(ViewTest, packetViewsRefuseItToo)
{
    HostImage image(QEL_INT32, {3, 2});
    EXPECT_THROW(access::PacketView<float>::New(&image, FixedBorderCondition<float>::New(0)), UnexpectedError);
    EXPECT_NO_THROW(access::PacketView<int>::New(&image, FixedBorderCondition<int>::New(0)));
}

/// Notes in which order its sizes are asked for.
struct SizeNotes : HostImage
{
    using HostImage::HostImage;
    unsigned long getNumOf(Components const& component) const override
    {
        asked.push_back(component);
        return HostImage::getNumOf(component);
    }
    mutable std::vector<int> asked;
};

TEST(ViewTest, readsTheSizesOnceInTheirOrder)
{
    SizeNotes image(QEL_INT16, {7, 6, 5, 4, 3});
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(0));
    EXPECT_EQ(image.asked, (std::vector<int>{ROWS, PLANS, COLUMNS, TIME_SERIES, SPECTRAL_SERIES}));
    image.asked.clear();
    for (int repeat = 0; repeat < 3; ++repeat) {
        EXPECT_EQ(view->getNumOf(COLUMNS), 7u);
        EXPECT_EQ(view->getNumOf(ROWS), 6u);
        EXPECT_EQ(view->getNumOf(PLANS), 5u);
        EXPECT_EQ(view->getNumOf(TIME_SERIES), 4u);
        EXPECT_EQ(view->getNumOf(SPECTRAL_SERIES), 3u);
        EXPECT_EQ(view->numOfCols(), 7u);
        EXPECT_EQ(view->numOfRows(), 6u);
        EXPECT_EQ(view->numOfPlans(), 5u);
        EXPECT_EQ(view->numOfTimeSeries(), 4u);
        EXPECT_EQ(view->numOfSpectralSeries(), 3u);
    }
    EXPECT_TRUE(image.asked.empty());
}

TEST(ViewTest, keepsOldSizesUntilItIsToldOfNewOnes)
{
    HostImage image(QEL_INT16, {7, 6});
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(0));
    image.reserve(QEL_INT16, 2, 3, 4, 5, 6);
    EXPECT_EQ(view->numOfCols(), 7u);
    view->recomputeCache();
    EXPECT_EQ(view->numOfCols(), 2u);
    EXPECT_EQ(view->numOfRows(), 3u);
    EXPECT_EQ(view->numOfPlans(), 4u);
    EXPECT_EQ(view->numOfTimeSeries(), 5u);
    EXPECT_EQ(view->numOfSpectralSeries(), 6u);
    short row[4];
    view->read(row, 4, -1, 2, 3, 4, 5);
    EXPECT_EQ(row[0], 0);
    EXPECT_EQ(row[3], 0);
    // Rows of another type would not even have the length of this view's.
    image.reserve(QEL_FLOAT64, 2, 3, 4, 5, 6);
    EXPECT_QEL_THROW(view->recomputeCache(), UnexpectedError, "Types do not correspond in CheckTypeEquivalence");
}

TEST(ViewTest, itsLargestRegionIsTheWholeImage)
{
    HostImage image(QEL_INT16, {7, 6, 5, 4, 3});
    access::Region const region =
        View<short>::New(&image, FixedBorderCondition<short>::New(0))->getLargestPossibleRegion();
    EXPECT_EQ(region.colsBegin(), 0u);
    EXPECT_EQ(region.colsEnd(), 7u);
    EXPECT_EQ(region.rowsBegin(), 0u);
    EXPECT_EQ(region.rowsEnd(), 6u);
    EXPECT_EQ(region.plansBegin(), 0u);
    EXPECT_EQ(region.plansEnd(), 5u);
    EXPECT_EQ(region.timeSeriesBegin(), 0u);
    EXPECT_EQ(region.timeSeriesEnd(), 4u);
    EXPECT_EQ(region.spectralSeriesBegin(), 0u);
    EXPECT_EQ(region.spectralSeriesEnd(), 3u);
}

TEST(ViewTest, forwardsTypeAndCalibrationToTheImage)
{
    HostImage image(QEL_FLOAT32, {2, 2});
    auto const view = View<float>::New(&image, FixedBorderCondition<float>::New(0));
    EXPECT_EQ(view->getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(view->getInterface(), &image);
    for (Components const axis : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        EXPECT_TRUE(view->setOriginOf(axis, 10.5 + int(axis)));
        EXPECT_TRUE(view->setSpacingOf(axis, 0.25 + int(axis)));
        EXPECT_EQ(image.getOriginOf(axis), 10.5 + int(axis));
        EXPECT_EQ(image.getSpacingOf(axis), 0.25 + int(axis));
        EXPECT_EQ(view->getOriginOf(axis), 10.5 + int(axis));
        EXPECT_EQ(view->getSpacingOf(axis), 0.25 + int(axis));
    }
    EXPECT_TRUE(view->setSpatialUnitName("mm"));
    EXPECT_TRUE(view->setTemporalUnitName("s"));
    EXPECT_EQ(image.getSpatialUnitName(), String("mm"));
    EXPECT_EQ(view->getSpatialUnitName(), String("mm"));
    EXPECT_EQ(view->getTemporalUnitName(), String("s"));
    image.failOn(SET_ORIGIN).failOn(SET_SPACING).failOn(SET_SPATIAL_UNIT).failOn(SET_TEMPORAL_UNIT);
    EXPECT_FALSE(view->setOriginOf(ROWS, 1));
    EXPECT_FALSE(view->setSpacingOf(ROWS, 1));
    EXPECT_FALSE(view->setSpatialUnitName("m"));
    EXPECT_FALSE(view->setTemporalUnitName("h"));
}

TEST(ViewTest, takesAnotherBorderCondition)
{
    HostImage image(Picture<int>({3, 1}, {4, 5, 6}));
    auto const fixed = FixedBorderCondition<int>::New(-1);
    auto const view = View<int>::New(&image, fixed);
    EXPECT_EQ(view->getBorderCondition(), fixed);
    int row[5];
    view->read(row, 5, -1, 0, 0, 0, 0);
    EXPECT_EQ(std::vector<int>(row, row + 5), (std::vector{-1, 4, 5, 6, -1}));
    view->setBorderCondition(access::ContinueBorderCondition<int>::New());
    view->read(row, 5, -1, 0, 0, 0, 0);
    EXPECT_EQ(std::vector<int>(row, row + 5), (std::vector{4, 4, 5, 6, 6}));
}

TEST(ViewTest, readsWhatLiesInTheImageWithOneCallAndNoOther)
{
    HostImage image(randomPicture<short>({9, 4, 3, 2, 2}, 5));
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(0));
    image.forgetCalls();
    std::vector<short> row(9);
    view->read(row.data(), 9, 0, 3, 2, 1, 1);
    view->read(row.data(), 1, 8, 0, 0, 0, 0);
    for (int operation = 0; operation < NUM_OF_OPERATIONS; ++operation) {
        unsigned long const expected = operation == READ_ROW ? 2 : 0;
        EXPECT_EQ(image.callsOf(static_cast<Operation>(operation)), expected) << operation;
    }
    image.failOn(READ_ROW);
    EXPECT_QEL_THROW(view->read(row.data(), 9, 0, 3, 2, 1, 1), UnexpectedError,
                     "Error in readRowAt implementation, return value is false");
    EXPECT_QEL_THROW(view->read(row.data(), 9, -1, 3, 2, 1, 1), UnexpectedError,
                     "Error in readRowAt implementation, return value is false");
    image.behave().throwOn(READ_ROW);
    EXPECT_THROW(view->read(row.data(), 9, 0, 3, 2, 1, 1), HostFailure);
}

TEST(ViewTest, makesCachesWithTheirSlots)
{
    HostImage image(QEL_UINT8, {3, 2});
    auto const view = View<unsigned char>::New(&image, FixedBorderCondition<unsigned char>::New(0));
    EXPECT_EQ(view->createRowCacheRead(3)->getNumOfRows(), 3u);
    EXPECT_EQ(view->createRowCacheReadWrite(2)->getNumOfRows(), 2u);
    EXPECT_EQ(view->createPlanCacheRead(4)->getNumOfPlans(), 4u);
    EXPECT_EQ(view->createPlanCacheReadWrite(1)->getNumOfPlans(), 1u);
    auto const cache = view->createRowCacheRead(3);
    for (unsigned long slot = 0; slot < 3; ++slot) {
        EXPECT_EQ(cache->getRow(slot).getSlot(), slot);
        EXPECT_EQ(cache->getRow(slot).size(), 0u);
    }
    auto const plans = view->createPlanCacheReadWrite(2);
    EXPECT_EQ(plans->getPlan(1).getSlot(), 1u);
    EXPECT_EQ(plans->getPlan(1).getNumOfRows(), 0u);
}

TEST(ViewTest, takesDeferredRowsFromManyThreadsAndWritesThemAll)
{
    constexpr unsigned long rows = 500;
    HostImage image(Picture<int>({4, rows}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    withThreads(4, [&] {
        tbb::parallel_for(0ul, rows, [&](unsigned long row) {
            auto const waiting = boost::make_shared<View<int>::Row>(0ul, view.get());
            waiting->resize(4);
            waiting->setPosition({0, static_cast<long>(row), 0, 0, 0});
            std::fill(waiting->data(), waiting->data() + 4, static_cast<int>(row) + 1);
            view->temporizeRowWriting(waiting);
        });
    });
    EXPECT_EQ(view->getNumOfTemporizedRows(), rows);
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
    view->writeAllTemporizedRows();
    EXPECT_EQ(view->getNumOfTemporizedRows(), 0u);
    EXPECT_EQ(image.callsOf(WRITE_ROW), rows);
    Picture<int> expected({4, rows});
    forEachVoxel(expected.shape, [&](auto column, auto row, auto, auto, auto) {
        expected.at(column, row) = static_cast<int>(row) + 1;
    });
    EXPECT_TRUE(samePicture(expected, image));
    view->writeAllTemporizedRows();
    EXPECT_EQ(image.callsOf(WRITE_ROW), rows);
}

TEST(ViewTest, writesDeferredRowsInTheOrderOfTheirComing)
{
    HostImage image(Picture<int>({4, 1}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    for (int value = 1; value <= 5; ++value) {
        auto const waiting = boost::make_shared<View<int>::Row>(0ul, view.get());
        waiting->resize(2);
        waiting->setPosition({value == 5 ? 2 : 1, 0, 0, 0, 0});
        std::fill(waiting->data(), waiting->data() + 2, value);
        view->temporizeRowWriting(waiting);
    }
    view->writeAllTemporizedRows();
    EXPECT_TRUE(samePicture(Picture<int>({4, 1}, {0, 4, 5, 5}), image));
}

TEST(ViewTest, dropsDeferredRowsWithItself)
{
    HostImage image(Picture<int>({4, 1}));
    {
        auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
        auto const waiting = boost::make_shared<View<int>::Row>(0ul, view.get());
        waiting->resize(4);
        view->temporizeRowWriting(waiting);
    }
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
}

TEST(ViewTest, twoViewsOnOneImageAreKnownThroughTheirAdapters)
{
    HostImage image(QEL_UINT8, {3, 2});
    HostImage other(QEL_UINT8, {3, 2});
    ImageModelAdapter const asFloat(&image, QEL_FLOAT32);
    ImageModelAdapter const asInt(&image, QEL_INT32);
    ImageModelAdapter const otherAsInt(&other, QEL_INT32);
    EXPECT_TRUE(access::areOnOneImage(&image, &image));
    EXPECT_FALSE(access::areOnOneImage(&image, &other));
    EXPECT_TRUE(access::areOnOneImage(asFloat.getImage(), &image));
    EXPECT_TRUE(access::areOnOneImage(asFloat.getImage(), asInt.getImage()));
    EXPECT_FALSE(access::areOnOneImage(asFloat.getImage(), otherAsInt.getImage()));
}

TEST(ViewTest, aligningMemoryLeavesRoomForAPacketBehindTheLastVoxel)
{
    std::vector<int, SimdVec::AlignedAllocator<int, 16>> row;
    for (unsigned long count : {1ul, 3ul, 4ul, 5ul, 1000ul}) {
        row.assign(count, 7);
        row.shrink_to_fit();
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(row.data()) % 16, 0u) << count;
        std::fill(row.data() + count, row.data() + count + 3, 1); // checked by the address sanitizer
    }
}

} // namespace
} // namespace qel::test
