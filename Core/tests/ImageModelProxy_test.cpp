#include "Core/private/ImageModelProxy.h"

#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/ImageModelSizeProxy.h"
#include "Core/tests/Support/Support.h"

#include <qel/ImageModelAdapter.h>

#include <vector>

namespace qel::test {
namespace {

template <class Target, class Source> Picture<Target> converted(Picture<Source> const& picture)
{
    Picture<Target> result(picture.shape);
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        result.voxels[i] = helper::convertVoxel<Target>(picture.voxels[i]);
    return result;
}

template <class T> bool writeAll(ImageModel& image, Picture<T> const& picture)
{
    bool written = true;
    Shape rows = picture.shape;
    rows.columns = 1;
    forEachVoxel(rows, [&](auto, auto row, auto plan, auto time, auto spectral) {
        auto const* voxels = reinterpret_cast<unsigned char const*>(&picture.at(0, row, plan, time, spectral));
        written &= image.writeRowAt(picture.shape.columns, voxels, 0, row, plan, time, spectral);
    });
    return written;
}

TEST(ImageModelProxy, readsAndWritesEveryTypeAsEveryOther)
{
    // Rows on both sides of what fits into a buffer on the stack.
    for (Shape const& shape : {Shape{67, 3, 2, 2, 2}, Shape{1}, Shape{5000, 2}})
        forEachVoxelTypePair([&]<class Wrapped, class Shown>() {
            auto const picture = randomPicture<Wrapped>(shape, 23, true);
            HostImage image(picture);
            ImageModelProxy proxy(&image, VoxelTypeOf<Shown>::value);
            EXPECT_EQ(proxy.getVoxelType(), VoxelTypeOf<Shown>::value);
            EXPECT_TRUE(samePicture(converted<Shown>(picture), proxy));
            auto const other = randomPicture<Shown>(shape, 29, true);
            EXPECT_TRUE(writeAll(proxy, other));
            EXPECT_TRUE(samePicture(converted<Wrapped>(other), image));
        });
}

TEST(ImageModelProxy, widensARowInTheCallersBuffer)
{
    Picture<unsigned char> const picture(Shape{5}, {0, 1, 127, 128, 255});
    // Sees where the wrapped image is asked to put its voxels.
    class Watcher : public HostImage
    {
    public:
        using HostImage::HostImage;
        bool readRowAt(unsigned long count, unsigned char* destination, unsigned long column, unsigned long row,
                       unsigned long plan, unsigned long time, unsigned long spectral) const override
        {
            askedFor = destination;
            return HostImage::readRowAt(count, destination, column, row, plan, time, spectral);
        }
        mutable unsigned char* askedFor = nullptr;
    } watcher(picture);
    ImageModelProxy const watched(&watcher, QEL_FLOAT64);
    double row[5] = {};
    auto* const bytes = reinterpret_cast<unsigned char*>(row);
    ASSERT_TRUE(watched.readRowAt(5, bytes, 0, 0, 0, 0, 0));
    EXPECT_EQ(watcher.askedFor, bytes + 5 * 7);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(row[i], picture.voxels[i]);
}

TEST(ImageModelProxy, cutsRealsToTheirLowBits)
{
    Picture<float> const picture(Shape{2}, {300.7f, -1.5f});
    HostImage image(picture);
    ImageModelProxy const proxy(&image, QEL_UINT8);
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2}, {44, 255}), proxy));
}

TEST(ImageModelProxy, givesNoDirectRows)
{
    memory::InMemoryImage image = toImage(Picture<short>(Shape{4}));
    ImageModelProxy const proxy(&image, QEL_FLOAT32);
    unsigned char marker = 0;
    unsigned char* row = &marker;
    unsigned char const* constRow = &marker;
    EXPECT_FALSE(proxy.getRowAt(1, row, 0, 0, 0, 0, 0));
    EXPECT_FALSE(proxy.getConstRowAt(1, constRow, 0, 0, 0, 0, 0));
    EXPECT_EQ(row, &marker);
    EXPECT_EQ(constRow, &marker);
}

TEST(ImageModelProxy, handsOnAFalseWithoutConverting)
{
    for (VoxelTypes const shown : {QEL_FLOAT64, QEL_UINT8}) {
        HostImage image(Picture<short>(Shape{4}, 5));
        ImageModelProxy proxy(&image, shown);
        unsigned char row[64] = {1, 2, 3, 4, 5, 6, 7, 8};
        EXPECT_FALSE(proxy.readRowAt(5, row, 0, 0, 0, 0, 0));
        EXPECT_FALSE(proxy.writeRowAt(5, row, 0, 0, 0, 0, 0));
        image.failOn(READ_ROW).failOn(WRITE_ROW);
        EXPECT_FALSE(proxy.readRowAt(4, row, 0, 0, 0, 0, 0));
        EXPECT_FALSE(proxy.writeRowAt(4, row, 0, 0, 0, 0, 0));
        for (unsigned char i = 0; i < 8; ++i)
            EXPECT_EQ(row[i], i + 1);
        EXPECT_TRUE(samePicture(Picture<short>(Shape{4}, 5), image.behave()));
    }
}

TEST(ImageModelProxy, letsAThrowPass)
{
    HostImage image(Picture<short>(Shape{2000}, 5));
    image.throwOn(READ_ROW).throwOn(WRITE_ROW);
    std::vector<unsigned char> row(8 * 2000);
    for (VoxelTypes const shown : {QEL_FLOAT64, QEL_UINT8}) {
        ImageModelProxy proxy(&image, shown);
        EXPECT_THROW(proxy.readRowAt(2000, row.data(), 0, 0, 0, 0, 0), HostFailure);
        EXPECT_THROW(proxy.writeRowAt(2000, row.data(), 0, 0, 0, 0, 0), HostFailure);
    }
}

TEST(ImageModelProxy, refusesRowsOfTypesWithoutConversion)
{
    HostImage image(Picture<short>(Shape{4}, 5));
    HostImage complex(QEL_COMPLEX_FLOAT32, Shape{4});
    unsigned char row[64] = {};
    for (VoxelTypes const shown : {QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64, VoxelTypes(99), VoxelTypes(-1)}) {
        ImageModelProxy proxy(&image, shown);
        EXPECT_FALSE(proxy.readRowAt(1, row, 0, 0, 0, 0, 0));
        EXPECT_FALSE(proxy.writeRowAt(1, row, 0, 0, 0, 0, 0));
    }
    ImageModelProxy proxy(&complex, QEL_FLOAT32);
    EXPECT_FALSE(proxy.readRowAt(1, row, 0, 0, 0, 0, 0));
    EXPECT_FALSE(proxy.writeRowAt(1, row, 0, 0, 0, 0, 0));
    EXPECT_EQ(complex.callsOf(READ_ROW) + complex.callsOf(WRITE_ROW) + image.callsOf(READ_ROW), 0u);
}

TEST(ImageModelProxy, refusesARowLongerThanMemory)
{
    HostImage image(Picture<double>(Shape{4}));
    ImageModelProxy proxy(&image, QEL_UINT8);
    unsigned char row[4] = {};
    EXPECT_FALSE(proxy.readRowAt(1ul << 62, row, 0, 0, 0, 0, 0));
    EXPECT_FALSE(proxy.writeRowAt(1ul << 62, row, 0, 0, 0, 0, 0));
}

/// Sets everything through one image, and sees it in another.
void expectSharedState(ImageModel& set, ImageModel& seen)
{
    for (Components const axis : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        EXPECT_TRUE(set.setOriginOf(axis, 100 + axis));
        EXPECT_TRUE(set.setSpacingOf(axis, 200 + axis));
        EXPECT_EQ(seen.getOriginOf(axis), 100 + axis);
        EXPECT_EQ(seen.getSpacingOf(axis), 200 + axis);
    }
    EXPECT_TRUE(set.setSpatialUnitName("mm"));
    EXPECT_TRUE(set.setTemporalUnitName("s"));
    EXPECT_TRUE(set.setInterpretation(QEL_LABEL));
    EXPECT_EQ(seen.getSpatialUnitName(), String("mm"));
    EXPECT_EQ(seen.getTemporalUnitName(), String("s"));
    EXPECT_EQ(seen.getInterpretation(), QEL_LABEL);
}

TEST(ImageModelProxy, sharesAllElseWithTheWrappedImage)
{
    HostImage image(Picture<short>(Shape{4, 5, 6, 7, 8}));
    ImageModelProxy proxy(&image, QEL_FLOAT32);
    EXPECT_EQ(proxy.getWrapped(), &image);
    EXPECT_EQ(shapeOf(proxy), (Shape{4, 5, 6, 7, 8}));
    expectSharedState(proxy, image);
    EXPECT_TRUE(sameCalibration(image, proxy));
    EXPECT_EQ(proxy.getInterpretation(), QEL_LABEL);
    unsigned long sizes[5] = {};
    EXPECT_FALSE(proxy.getPreferedSize(sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]));
    image.preferSize(Shape{1, 2, 3, 4, 5});
    EXPECT_TRUE(proxy.getPreferedSize(sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]));
    EXPECT_EQ(sizes[4], 5u);
    image.failOn(SET_ORIGIN).failOn(SET_SPACING).failOn(SET_SPATIAL_UNIT).failOn(SET_TEMPORAL_UNIT);
    image.failOn(SET_INTERPRETATION).failOn(RESERVE);
    EXPECT_FALSE(proxy.setOriginOf(ROWS, 1));
    EXPECT_FALSE(proxy.setSpacingOf(ROWS, 1));
    EXPECT_FALSE(proxy.setSpatialUnitName(""));
    EXPECT_FALSE(proxy.setTemporalUnitName(""));
    EXPECT_FALSE(proxy.setInterpretation(QEL_VALUE));
    EXPECT_FALSE(proxy.reserve(QEL_UINT8, 1, 1, 1, 1, 1));
}

TEST(ImageModelProxy, convertsFromTheTypeThatTheWrappedImageWasReservedWith)
{
    HostImage image(Picture<unsigned char>(Shape{4}));
    ImageModelProxy proxy(&image, QEL_FLOAT32);
    ASSERT_TRUE(proxy.reserve(QEL_FLOAT64, 3, 1, 1, 1, 1));
    EXPECT_EQ(image.getVoxelType(), QEL_FLOAT64);
    EXPECT_EQ(image.sizes(), (Shape{3}));
    EXPECT_EQ(proxy.getVoxelType(), QEL_FLOAT32);
    Picture<float> const picture(Shape{3}, {1.5f, -2.5f, 0});
    EXPECT_TRUE(writeAll(proxy, picture));
    EXPECT_TRUE(samePicture(picture, proxy));
    EXPECT_TRUE(samePicture(converted<double>(picture), image));
}

TEST(ImageModelSizeProxy, showsTheVoxelsOfItsBox)
{
    forEachVoxelType([]<class T>() {
        auto const whole = randomPicture<T>(Shape{7, 6, 5, 4, 3}, 31);
        Picture<T> box(Shape{4, 3, 2, 2, 1});
        forEachVoxel(box.shape, [&](auto c, auto r, auto p, auto t, auto s) {
            box.at(c, r, p, t, s) = whole.at(c + 2, r + 1, p + 3, t, s + 2);
        });
        for (bool const rows : {false, true}) {
            HostImage image(whole);
            image.giveRows(rows);
            ImageModelSizeProxy proxy(&image, 2, 4, 1, 3, 3, 2, 0, 2, 2, 1);
            EXPECT_EQ(proxy.getVoxelType(), VoxelTypeOf<T>::value);
            EXPECT_EQ(shapeOf(proxy), box.shape);
            EXPECT_TRUE(samePicture(box, proxy));
            unsigned char* row = nullptr;
            unsigned char const* constRow = nullptr;
            EXPECT_EQ(proxy.getRowAt(4, row, 0, 2, 1, 1, 0), rows);
            EXPECT_EQ(proxy.getConstRowAt(4, constRow, 0, 2, 1, 1, 0), rows);
            if (rows) {
                EXPECT_EQ(row, image.content().data() + whole.index(2, 3, 4, 1, 2) * sizeof(T));
                EXPECT_EQ(constRow, row);
            }
            auto const other = randomPicture<T>(box.shape, 37);
            EXPECT_TRUE(writeAll(proxy, other));
            auto changed = whole;
            forEachVoxel(box.shape, [&](auto c, auto r, auto p, auto t, auto s) {
                changed.at(c + 2, r + 1, p + 3, t, s + 2) = other.at(c, r, p, t, s);
            });
            EXPECT_TRUE(samePicture(changed, image));
        }
    });
}

TEST(ImageModelSizeProxy, refusesRowsOutsideItsBox)
{
    HostImage image(Picture<short>(Shape{9, 9, 9, 9, 9}));
    image.giveRows();
    ImageModelSizeProxy proxy(&image, 1, 3, 1, 3, 1, 3, 1, 3, 1, 3);
    unsigned char buffer[32] = {};
    unsigned char* row = buffer;
    unsigned char const* constRow = buffer;
    auto const allRefuse = [&](unsigned long n, unsigned long c, unsigned long r, unsigned long p, unsigned long t,
                               unsigned long s) {
        return !proxy.readRowAt(n, buffer, c, r, p, t, s) && !proxy.writeRowAt(n, buffer, c, r, p, t, s) &&
               !proxy.getRowAt(n, row, c, r, p, t, s) && !proxy.getConstRowAt(n, constRow, c, r, p, t, s) &&
               row == buffer && constRow == buffer;
    };
    EXPECT_TRUE(allRefuse(4, 0, 0, 0, 0, 0));
    EXPECT_TRUE(allRefuse(2, 2, 0, 0, 0, 0));
    EXPECT_TRUE(allRefuse(1, ~0ul, 0, 0, 0, 0));
    EXPECT_TRUE(allRefuse(~0ul, 1, 0, 0, 0, 0));
    EXPECT_TRUE(allRefuse(1, 0, 3, 0, 0, 0));
    EXPECT_TRUE(allRefuse(1, 0, 0, 3, 0, 0));
    EXPECT_TRUE(allRefuse(1, 0, 0, 0, 3, 0));
    EXPECT_TRUE(allRefuse(1, 0, 0, 0, 0, 3));
    EXPECT_EQ(
        image.callsOf(READ_ROW) + image.callsOf(WRITE_ROW) + image.callsOf(GET_ROW) + image.callsOf(GET_CONST_ROW), 0u);
    EXPECT_TRUE(proxy.readRowAt(3, buffer, 0, 2, 2, 2, 2));
    image.failOn(READ_ROW).failOn(WRITE_ROW).failOn(GET_ROW).failOn(GET_CONST_ROW);
    EXPECT_TRUE(allRefuse(3, 0, 0, 0, 0, 0));
}

TEST(ImageModelSizeProxy, refusesChangesAndShowsTheStateOfTheWholeImage)
{
    HostImage image(Picture<short>(Shape{9, 9}));
    expectSharedState(image, image);
    image.preferSize(Shape{1, 2, 3, 4, 5});
    ImageModelSizeProxy proxy(&image, 1, 3, 1, 3, 0, 1, 0, 1, 0, 1);
    EXPECT_TRUE(sameCalibration(image, proxy)); // origins too: not shifted
    EXPECT_EQ(proxy.getInterpretation(), QEL_LABEL);
    unsigned long sizes[5] = {};
    EXPECT_TRUE(proxy.getPreferedSize(sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]));
    EXPECT_EQ(sizes[2], 3u);
    image.forgetCalls();
    EXPECT_FALSE(proxy.setOriginOf(COLUMNS, 0));
    EXPECT_FALSE(proxy.setSpacingOf(COLUMNS, 0));
    EXPECT_FALSE(proxy.setSpatialUnitName("inch"));
    EXPECT_FALSE(proxy.setTemporalUnitName("h"));
    EXPECT_FALSE(proxy.setInterpretation(QEL_BINARY));
    EXPECT_FALSE(proxy.reserve(QEL_UINT8, 1, 1, 1, 1, 1));
    EXPECT_EQ(image.callsOf(SET_ORIGIN) + image.callsOf(SET_SPACING) + image.callsOf(SET_SPATIAL_UNIT) +
                  image.callsOf(SET_TEMPORAL_UNIT) + image.callsOf(SET_INTERPRETATION) + image.callsOf(RESERVE),
              0u);
    EXPECT_EQ(image.getSpatialUnitName(), String("mm"));
    EXPECT_EQ(proxy.getNumOf(Components(7)), 0u);
}

TEST(ImageModelAdapter, givesAnImageOfTheWantedTypeBack)
{
    HostImage image(Picture<short>(Shape{4}, 7));
    {
        ImageModelAdapter const adapter(&image, QEL_INT16);
        EXPECT_EQ(adapter.getImage(), &image);
    }
    EXPECT_TRUE(samePicture(Picture<short>(Shape{4}, 7), image));
}

TEST(ImageModelAdapter, convertsAnImageOfAnotherType)
{
    forEachVoxelType([]<class T>() {
        HostImage image(Picture<short>(Shape{4, 2}, 7));
        ImageModelAdapter const adapter(&image, VoxelTypeOf<T>::value);
        EXPECT_EQ(adapter.getImage() == &image, VoxelTypeOf<T>::value == QEL_INT16);
        EXPECT_TRUE(samePicture(Picture<T>(Shape{4, 2}, 7), *adapter.getImage()));
        EXPECT_TRUE(writeAll(*adapter.getImage(), Picture<T>(Shape{4, 2}, 9)));
        EXPECT_TRUE(samePicture(Picture<short>(Shape{4, 2}, 9), image));
    });
}

TEST(UnderlyingImage, standsBehindAnyProxy)
{
    HostImage image(Picture<short>(Shape{4, 4}));
    HostImage const other(Picture<short>(Shape{4, 4}));
    ImageModelAdapter const real(&image, QEL_FLOAT32);
    ImageModelAdapter const integer(real.getImage(), QEL_UINT32);
    ImageModelSizeProxy const box(integer.getImage(), 1, 2, 1, 2, 0, 1, 0, 1, 0, 1);
    EXPECT_EQ(helper::underlyingImage(&image), &image);
    EXPECT_EQ(helper::underlyingImage(real.getImage()), &image);
    EXPECT_EQ(helper::underlyingImage(integer.getImage()), &image);
    EXPECT_EQ(helper::underlyingImage(&box), &image);
    EXPECT_EQ(helper::underlyingImage(&other), &other);
    EXPECT_EQ(helper::underlyingImage(nullptr), nullptr);
}

} // namespace
} // namespace qel::test
