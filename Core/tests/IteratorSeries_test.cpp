#include "Core/private/Access/IteratorSeries.h"
#include "Core/tests/IteratorSupport.h"

#include <qel/AlgoBorderInfluence.h>

#include <gtest/gtest.h>

#include <vector>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::IteratorSpectralInput;
using access::IteratorTemporalOutput;
using access::OverlapBorder;
using access::View;

Shape const volume{21, 6, 3, 4, 3};

template <class Block> std::vector<Block> blocksOf(unsigned long time)
{
    if constexpr (std::is_same_v<Block, Block2d>)
        return blocksOfAPlan(volume, 2, time, 0);
    else
        return blocksOfAVolume(volume, time, 0);
}

template <class T, class Block> void expectSpectralInput()
{
    auto const picture = randomPicture<T>(volume, 71);
    HostImage const image(picture);
    IteratorSpectralInput<View<T>, 1> in(View<T>::New(&image, FixedBorderCondition<T>::New(T(0))));
    ASSERT_EQ(in.size(), 3u);
    for (Block const& block : blocksOf<Block>(2)) {
        std::vector<Place> places;
        for (in.init(block); !in.atEnd(); ++in) {
            Place const place = placeOf(in);
            places.push_back(place);
            for (unsigned long series = 0; series < 3; ++series) {
                ASSERT_TRUE(sameValue(in[series], picture.at(place.column, place.row, place.plan, 2, series)));
                ASSERT_EQ(in.pointer(series), in.rowData(series) + in.column());
            }
        }
        ASSERT_EQ(places, placesOf(block));
    }
}

TEST(IteratorSpectralInputTest, givesOneVoxelOfEachSpectralSeries)
{
    forEachVoxelType([]<class T>() {
        expectSpectralInput<T, Block2d>();
        expectSpectralInput<T, Block3d>();
    });
}

template <class T, class Block> void expectTemporalOutput()
{
    auto const background = randomPicture<T>(volume, 72);
    auto const drawn = randomPicture<T>(volume, 73);
    for (bool const readBeforeWrite : {false, true})
        for (Block const& block : blocksOf<Block>(0)) {
            HostImage image(background);
            auto const view = View<T>::New(&image, FixedBorderCondition<T>::New(T(0)));
            IteratorTemporalOutput<View<T>, 1> out(view, readBeforeWrite);
            ASSERT_EQ(out.size(), 4u);
            Picture<T> expected = background;
            std::vector<Place> places;
            image.forgetCalls();
            for (out.init(block); !out.atEnd(); ++out) {
                Place const place = placeOf(out);
                places.push_back(place);
                for (unsigned long series = 0; series < 4; ++series) {
                    if (readBeforeWrite) {
                        ASSERT_TRUE(
                            sameValue(out[series], background.at(place.column, place.row, place.plan, series, 0)));
                        // Some are left alone, and keep what they have.
                        if ((place.column + static_cast<long>(series)) % 2 == 0)
                            continue;
                    }
                    ASSERT_EQ(out.pointer(series), out.rowData(series) + out.column());
                    out[series] = drawn.at(place.column, place.row, place.plan, series, 0);
                    expected.at(place.column, place.row, place.plan, series, 0) = out[series];
                }
            }
            unsigned long const rows = 4 * block.getNbRows() * block.getNbPlans();
            ASSERT_EQ(places, placesOf(block));
            ASSERT_EQ(image.callsOf(WRITE_ROW), rows);
            ASSERT_EQ(image.callsOf(READ_ROW), readBeforeWrite ? rows : 0u);
            ASSERT_TRUE(samePicture(expected, image));
        }
}

TEST(IteratorTemporalOutputTest, writesOneVoxelOfEachTimeSeries)
{
    forEachVoxelType([]<class T>() {
        expectTemporalOutput<T, Block2d>();
        expectTemporalOutput<T, Block3d>();
    });
}

TEST(IteratorTemporalOutputTest, defersItsMargins)
{
    HostImage image(Picture<int>({4, 6, 1, 3, 1}));
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorTemporalOutput<View<int>, 1> out(view, false, OverlapBorder(AlgoBorderInfluence(0, 1, 0, 0, 0)));
    for (out.init(block2d(0, 4, 2, 4)); !out.atEnd(); ++out)
        for (unsigned long series = 0; series < 3; ++series)
            out[series] = static_cast<int>(series) + 1;
    EXPECT_EQ(image.callsOf(WRITE_ROW), 0u);
    EXPECT_EQ(view->getNumOfTemporizedRows(), 6u);
    view->writeAllTemporizedRows();
    auto const picture = fromImage<int>(image);
    for (unsigned long series = 0; series < 3; ++series)
        EXPECT_EQ(picture.at(3, 3, 0, series), static_cast<int>(series) + 1);
}

TEST(IteratorSeriesTest, goFromRowToRow)
{
    auto const picture = randomPicture<int>(volume, 74);
    HostImage image(picture);
    auto const view = View<int>::New(&image, FixedBorderCondition<int>::New(0));
    IteratorSpectralInput<View<int>, 1> in(view);
    IteratorTemporalOutput<View<int>, 1> out(view, true);
    Block3d const block = block3d(2, 9, 1, 5, 0, 3, 0);
    int rows = 0;
    for (in.init(block), out.init(block); !in.atEnd(); in.nextRow(), out.nextRow(), ++rows)
        for (unsigned long i = 0; i < in.rowLength(); ++i) {
            auto const row = static_cast<unsigned long>(1 + in.row());
            auto const plan = static_cast<unsigned long>(in.plan());
            EXPECT_EQ(in.rowData(2)[i], picture.at(2 + i, row, plan, 0, 2));
            EXPECT_EQ(out.rowData(3)[i], picture.at(2 + i, row, plan, 3, 0));
        }
    EXPECT_EQ(rows, 12);
    EXPECT_TRUE(out.atEnd());
    EXPECT_TRUE(samePicture(picture, image));
}

} // namespace
} // namespace qel::test
