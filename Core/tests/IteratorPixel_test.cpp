#include "Core/private/Access/IteratorPixel.h"
#include "Core/tests/IteratorSupport.h"

#include <qel/AlgoBorderInfluence.h>

#include <gtest/gtest.h>

#include <vector>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::IteratorPixelBiDir_Input;
using access::IteratorPixelInput;
using access::IteratorPixelOutput;
using access::OverlapBorder;
using access::PacketView;
using access::View;

Shape const volume{21, 6, 3, 2, 2};

template <class Block> std::vector<Block> blocksOf(Shape const& shape, unsigned long time, unsigned long spectral)
{
    if constexpr (std::is_same_v<Block, Block2d>)
        return blocksOfAPlan(shape, 1, time, spectral);
    else
        return blocksOfAVolume(shape, time, spectral);
}

// ---- input

template <class T, class Block> void expectInputVisitsBlocks()
{
    auto const picture = randomPicture<T>(volume, 41);
    HostImage image(picture);
    auto const view = View<T>::New(&image, FixedBorderCondition<T>::New(T(0)));
    for (Block const& block : blocksOf<Block>(volume, 1, 0)) {
        image.forgetCalls();
        IteratorPixelInput<View<T>, 1> in(view);
        std::vector<Place> places;
        for (in.init(block, true); !in.atEnd(); ++in) {
            Place const place = placeOf(in);
            places.push_back(place);
            ASSERT_TRUE(sameValue(*in, picture.at(place.column, place.row, place.plan, 1, 0)));
            ASSERT_EQ(in.pointer(), &*in);
            ASSERT_EQ(in.pointer() - in.rowData(), in.column());
        }
        ASSERT_EQ(places, placesOf(block));
        ASSERT_EQ(in.plan(), static_cast<long>(block.getNbPlans()));
        ASSERT_EQ(in.paddedRowLength(), block.getNbCols());
        // Each row is read once, and nothing is fetched past the end.
        ASSERT_EQ(image.callsOf(READ_ROW), block.getNbRows() * block.getNbPlans());
        ASSERT_EQ(image.callsOf(WRITE_ROW) + image.callsOf(GET_ROW) + image.callsOf(GET_CONST_ROW), 0u);
    }
}

TEST(IteratorPixelInputTest, visitsEveryVoxelOfABlockInRowOrder)
{
    forEachVoxelType([]<class T>() {
        expectInputVisitsBlocks<T, Block2d>();
        expectInputVisitsBlocks<T, Block3d>();
    });
}

TEST(IteratorPixelInputTest, pastTheLastRowMovesThePlanPastTheEnd)
{
    HostImage image(Picture<int>({3, 1}, {1, 2, 3}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelInput<View<int>, 1> in(view);
    in.init(block2d(0, 3, 0, 1));
    ++in;
    ++in;
    EXPECT_FALSE(in.atEnd());
    EXPECT_EQ(in.plan(), 0);
    ++in;
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(in.plan(), 1);
}

TEST(IteratorPixelInputTest, inABlockOfOneColumnEveryStepChangesTheRow)
{
    HostImage image(Picture<int>({1, 3, 2}, {1, 2, 3, 4, 5, 6}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelInput<View<int>, 1> in(view);
    std::vector<int> seen;
    for (in.init(block3d(0, 1, 0, 3, 0, 2)); !in.atEnd(); ++in) {
        EXPECT_EQ(in.column(), 0);
        seen.push_back(*in);
    }
    EXPECT_EQ(seen, (std::vector{1, 2, 3, 4, 5, 6}));
}

TEST(IteratorPixelInputTest, goesFromRowToRow)
{
    auto const picture = randomPicture<short>(volume, 4);
    HostImage image(picture);
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(0));
    IteratorPixelInput<View<short>, 1> in(view);
    Block3d const block = block3d(2, 9, 1, 5, 0, 3);
    int rows = 0;
    for (in.init(block); !in.atEnd(); in.nextRow(), ++rows) {
        EXPECT_EQ(in.rowLength(), 7u);
        for (unsigned long i = 0; i < in.rowLength(); ++i)
            EXPECT_EQ(in.rowData()[i], picture.at(2 + i, 1 + static_cast<unsigned long>(in.row()),
                                                  static_cast<unsigned long>(in.plan())));
        ++in; // a row may be left from anywhere
    }
    EXPECT_EQ(rows, 12);
}

TEST(IteratorPixelInputTest, beginsAnewOnAnyBlock)
{
    auto const picture = randomPicture<short>(volume, 4);
    HostImage image(picture);
    auto const view = View<short>::New(&image, FixedBorderCondition<short>::New(0));
    IteratorPixelInput<View<short>, 1> in(view);
    in.init(block3d(2, 9, 1, 5, 0, 3));
    for (int i = 0; i < 20; ++i)
        ++in;
    in.init(block2d(5, 7, 2, 4, 2, 1, 1));
    std::vector<short> seen;
    for (; !in.atEnd(); ++in)
        seen.push_back(*in);
    EXPECT_EQ(seen, (std::vector<short>{picture.at(5, 2, 2, 1, 1), picture.at(6, 2, 2, 1, 1), picture.at(5, 3, 2, 1, 1),
                                        picture.at(6, 3, 2, 1, 1)}));
}

template <class V, int N> struct OpenInput : IteratorPixelInput<V, N>
{
    using IteratorPixelInput<V, N>::IteratorPixelInput;
    using access::BlockCursor::m_lastColumn;
};

template <class T> void expectInputOfPackets(bool padded)
{
    using V = PacketView<T>;
    constexpr int N = access::packetSizeOf<T>;
    auto const picture = randomPicture<T>(volume, 42);
    HostImage const image(picture);
    for (auto const& condition : {FixedBorderCondition<T>::New(T(55)), access::ContinueBorderCondition<T>::New()}) {
        auto const view = V::New(&image, condition);
        for (Block3d const& block : blocksOfAVolume(volume, 0, 1)) {
            long const cols = static_cast<long>(block.getNbCols());
            OpenInput<V, N> in(view);
            long packets = 0;
            for (in.init(block, padded); !in.atEnd(); ++in, ++packets) {
                ASSERT_EQ(in.m_lastColumn, cols - N);
                ASSERT_EQ(in.column() % N, 0);
                ASSERT_EQ(in.paddedRowLength(), static_cast<unsigned long>(padded ? (cols + N - 1) / N * N : cols));
                Place const place = placeOf(in);
                for (int lane = 0; lane < (padded ? N : std::min<long>(N, cols - in.column())); ++lane)
                    ASSERT_TRUE(sameValue(in.pointer()[lane], conditionAt(*condition, image, place.column + lane,
                                                                          place.row, place.plan, 0, 1)));
            }
            ASSERT_EQ(packets, (cols + N - 1) / N * static_cast<long>(block.getNbRows() * block.getNbPlans()));
        }
    }
}

TEST(IteratorPixelInputTest, ofPacketsCoversEachRowAndWhatPadsIt)
{
#define QEL_TEST(T) expectInputOfPackets<T>(true);
    QEL_FOR_EACH_PACKET_TYPE(QEL_TEST)
#undef QEL_TEST
}

TEST(IteratorPixelInputTest, ofPacketsWithoutPaddingReadsTheBlockAlone)
{
#define QEL_TEST(T) expectInputOfPackets<T>(false);
    QEL_FOR_EACH_PACKET_TYPE(QEL_TEST)
#undef QEL_TEST
}

TEST(IteratorPixelInputTest, packetsHaveSixteenBytes)
{
    EXPECT_EQ(access::packetSizeOf<unsigned char>, 16);
    EXPECT_EQ(access::packetSizeOf<signed char>, 16);
    EXPECT_EQ(access::packetSizeOf<unsigned short>, 8);
    EXPECT_EQ(access::packetSizeOf<short>, 8);
    EXPECT_EQ(access::packetSizeOf<unsigned int>, 4);
    EXPECT_EQ(access::packetSizeOf<int>, 4);
    EXPECT_EQ(access::packetSizeOf<float>, 4);
    EXPECT_EQ(access::packetSizeOf<double>, 2);
}

TEST(IteratorPixelInputTest, fiveVoxelsInPacketsOfFourBecomeEight)
{
    HostImage image(Picture<int>({7, 1}, {1, 2, 3, 4, 5, 6, 7}));
    auto const view = PacketView<int>::New(&image, FixedBorderCondition<int>::New(-9));
    IteratorPixelInput<PacketView<int>, 4> in(view);
    in.init(block2d(1, 6, 0, 1), true);
    EXPECT_EQ(std::vector<int>(in.rowData(), in.rowData() + in.paddedRowLength()),
              (std::vector{2, 3, 4, 5, 6, 7, -9, -9}));
}

TEST(IteratorPixelInputTest, passesOnWhatTheImageFailsWith)
{
    HostImage image(QEL_INT32, {3, 3});
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelInput<View<int>, 1> in(view);
    image.failOn(READ_ROW, 1);
    in.init(block2d(0, 3, 0, 3));
    EXPECT_QEL_THROW(in.nextRow(), UnexpectedError, "Error in readRowAt implementation, return value is false");
    image.behave().throwOn(READ_ROW);
    EXPECT_THROW(in.init(block2d(0, 3, 0, 3)), HostFailure);
}

// ---- output

template <class V, int N> void expectOutputWritesBlocks()
{
    using T = typename V::VoxelType;
    auto const background = randomPicture<T>(volume, 43);
    auto const drawn = randomPicture<T>(volume, 44);
    for (bool const readBeforeWrite : {false, true})
        for (Block3d const& block : blocksOfAVolume(volume, 1, 1)) {
            HostImage image(background);
            auto const view = V::New(&image, FixedBorderCondition<T>::New(T(0)));
            Picture<T> expected = background;
            image.forgetCalls();
            IteratorPixelOutput<V, N> out(view, readBeforeWrite);
            for (out.init(block); !out.atEnd(); ++out) {
                Place const place = placeOf(out);
                for (int lane = 0; lane < N; ++lane) {
                    // A packet may hang over the end of its row: what is there never reaches the image.
                    bool const isInBlock = place.column + lane < static_cast<long>(block.colsEnd());
                    if (isInBlock && readBeforeWrite) {
                        ASSERT_TRUE(sameValue(out.pointer()[lane],
                                              background.at(place.column + lane, place.row, place.plan, 1, 1)));
                    }
                    out.pointer()[lane] =
                        isInBlock ? drawn.at(place.column + lane, place.row, place.plan, 1, 1) : T(99);
                    if (isInBlock)
                        expected.at(place.column + lane, place.row, place.plan, 1, 1) = out.pointer()[lane];
                }
            }
            unsigned long const rows = block.getNbRows() * block.getNbPlans();
            ASSERT_EQ(image.callsOf(WRITE_ROW), rows);
            ASSERT_EQ(image.callsOf(READ_ROW), readBeforeWrite ? rows : 0u);
            ASSERT_TRUE(samePicture(expected, image));
            ASSERT_EQ(view->getNumOfTemporizedRows(), 0u);
        }
}

TEST(IteratorPixelOutputTest, writesTheVoxelsOfItsBlockAndNoOther)
{
    forEachView([]<class V, int N>() { expectOutputWritesBlocks<V, N>(); });
}

TEST(IteratorPixelOutputTest, handsARowBackWhenItIsLeft)
{
    HostImage image(Picture<int>({2, 3}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    {
        IteratorPixelOutput<View<int>, 1> out(view, false);
        out.init(block2d(0, 2, 0, 3));
        *out = 1;
        ++out;
        *out = 2;
        EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
        ++out;
        EXPECT_TRUE(samePicture(Picture<int>({2, 3}, {1, 2, 0, 0, 0, 0}), image));
        *out = 3;
        // A voxel that is not set holds what an earlier row left.
        out.nextRow();
        EXPECT_TRUE(samePicture(Picture<int>({2, 3}, {1, 2, 3, 2, 0, 0}), image));
        *out = 5;
        ++out;
        *out = 6;
    }
    // A row in progress is lost with its cursor.
    EXPECT_TRUE(samePicture(Picture<int>({2, 3}, {1, 2, 3, 2, 0, 0}), image));
}

TEST(IteratorPixelOutputTest, withReadingKeepsVoxelsThatAreNotSet)
{
    HostImage image(Picture<int>({3, 2}, {1, 2, 3, 4, 5, 6}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelOutput<View<int>, 1> out(view, true);
    for (out.init(block2d(0, 3, 0, 2)); !out.atEnd(); ++out)
        if (out.column() == 1)
            *out *= 10;
    EXPECT_TRUE(samePicture(Picture<int>({3, 2}, {1, 20, 3, 4, 50, 6}), image));
}

TEST(IteratorPixelOutputTest, defersItsMargins)
{
    HostImage image(Picture<int>({6, 6}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelOutput<View<int>, 1> out(view, false, OverlapBorder(AlgoBorderInfluence(1, 1, 0, 0, 0)));
    for (out.init(block2d(2, 6, 1, 5)); !out.atEnd(); ++out)
        *out = 7;
    Picture<int> expected({6, 6});
    for (unsigned long row = 2; row < 5; ++row) // rows end one before the edge: no upper margin
        for (unsigned long column = 3; column < 5; ++column)
            expected.at(column, row) = 7;
    EXPECT_TRUE(samePicture(expected, image));
    view->writeAllTemporizedRows();
    for (unsigned long row = 1; row < 5; ++row)
        for (unsigned long column = 2; column < 6; ++column)
            expected.at(column, row) = 7;
    EXPECT_TRUE(samePicture(expected, image));
}

TEST(IteratorPixelOutputTest, passesOnWhatTheImageFailsWith)
{
    HostImage image(QEL_INT32, {3, 3});
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelOutput<View<int>, 1> out(view, false);
    out.init(block2d(0, 3, 0, 3));
    image.failOn(WRITE_ROW);
    EXPECT_QEL_THROW(out.nextRow(), UnexpectedError, "Error in writeRowAt implementation, return value is false");
}

// ---- both directions

template <class V, int N, class Block> void expectBothDirections()
{
    using T = typename V::VoxelType;
    auto const picture = randomPicture<T>(volume, 45);
    HostImage image(picture);
    auto const view = V::New(&image, FixedBorderCondition<T>::New(T(0)));
    for (Block const& block : blocksOf<Block>(volume, 0, 0)) {
        std::vector<Place> visits[2];
        for (IteratorDirection const direction : {Forward, Backward}) {
            image.forgetCalls();
            IteratorPixelBiDir_Input<V, N> in(view);
            for (in.init(block, direction); !in.atEnd(); ++in) {
                Place const place = placeOf(in);
                visits[direction].push_back(place);
                ASSERT_TRUE(sameValue(*in, picture.at(place.column, place.row, place.plan)));
                ASSERT_EQ(in.pointer() - in.rowData(), in.column());
            }
            ASSERT_EQ(image.callsOf(READ_ROW), block.getNbRows() * block.getNbPlans());
        }
        ASSERT_EQ(visits[Forward], placesOf(block));
        std::reverse(visits[Backward].begin(), visits[Backward].end());
        ASSERT_EQ(visits[Backward], visits[Forward]);
    }
}

TEST(IteratorPixelBiDirInputTest, visitsABlockInOppositeOrders)
{
    forEachView([]<class V, int N>() {
        expectBothDirections<V, N, Block2d>();
        expectBothDirections<V, N, Block3d>();
    });
}

TEST(IteratorPixelBiDirInputTest, goesFromRowToRowInEitherDirection)
{
    auto const picture = randomPicture<int>(volume, 46);
    HostImage image(picture);
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorPixelBiDir_Input<View<int>, 1> in(view);
    std::vector<long> rows;
    for (in.init(block3d(3, 8, 1, 4, 1, 3), Backward); !in.atEnd(); in.nextRow()) {
        EXPECT_EQ(in.column(), 4);
        EXPECT_EQ(in.rowData()[0],
                  picture.at(3, 1 + static_cast<unsigned long>(in.row()), 1 + static_cast<unsigned long>(in.plan())));
        rows.push_back(10 * in.plan() + in.row());
    }
    EXPECT_EQ(rows, (std::vector<long>{12, 11, 10, 2, 1, 0}));
    EXPECT_EQ(in.plan(), -1);
}

} // namespace
} // namespace qel::test
