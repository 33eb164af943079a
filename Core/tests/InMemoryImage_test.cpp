#include <qel/memory/InMemoryImage.h>

#include "Core/tests/Support/Support.h"

#include <limits>
#include <new>

namespace qel::test {
namespace {

using memory::InMemoryImage;

constexpr Components AXES[] = {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES};

void expectNoRows(InMemoryImage& image)
{
    unsigned char voxel[16] = {};
    unsigned char* row = voxel;
    unsigned char const* constRow = voxel;
    for (unsigned long const count : {0, 1}) {
        EXPECT_FALSE(image.getRowAt(count, row, 0, 0, 0, 0, 0));
        EXPECT_FALSE(image.getConstRowAt(count, constRow, 0, 0, 0, 0, 0));
        EXPECT_FALSE(image.readRowAt(count, voxel, 0, 0, 0, 0, 0));
        EXPECT_FALSE(image.writeRowAt(count, voxel, 0, 0, 0, 0, 0));
    }
    EXPECT_EQ(row, voxel);
    EXPECT_EQ(constRow, voxel);
}

TEST(InMemoryImage, startsEmpty)
{
    InMemoryImage image;
    EXPECT_EQ(image.getVoxelType(), QEL_UINT8);
    EXPECT_EQ(image.getInterpretation(), QEL_VALUE);
    EXPECT_EQ(image.getInternalBuffer(), nullptr);
    EXPECT_EQ(static_cast<InMemoryImage const&>(image).getInternalBuffer(), nullptr);
    EXPECT_EQ(image.getSpatialUnitName(), String(""));
    EXPECT_EQ(image.getTemporalUnitName(), String(""));
    for (Components const axis : AXES) {
        EXPECT_EQ(image.getNumOf(axis), 0u);
        EXPECT_EQ(image.getOriginOf(axis), 0.0);
        EXPECT_EQ(image.getSpacingOf(axis), 0.0);
    }
    expectNoRows(image);
}

TEST(InMemoryImage, storesWhatIsSet)
{
    InMemoryImage image;
    for (Components const axis : AXES) {
        EXPECT_TRUE(image.setOriginOf(axis, 10.5 + int(axis)));
        EXPECT_TRUE(image.setSpacingOf(axis, 0.25 * int(axis)));
    }
    EXPECT_TRUE(image.setSpatialUnitName("mm"));
    EXPECT_TRUE(image.setTemporalUnitName("s"));
    EXPECT_TRUE(image.setInterpretation(QEL_LABEL));
    for (Components const axis : AXES) {
        EXPECT_EQ(image.getOriginOf(axis), 10.5 + int(axis));
        EXPECT_EQ(image.getSpacingOf(axis), 0.25 * int(axis));
    }
    EXPECT_EQ(image.getSpatialUnitName(), String("mm"));
    EXPECT_EQ(image.getTemporalUnitName(), String("s"));
    EXPECT_EQ(image.getInterpretation(), QEL_LABEL);
}

TEST(InMemoryImage, refusesAnAxisThatIsNone)
{
    InMemoryImage image;
    for (int const axis : {-1, 5, 100}) {
        EXPECT_FALSE(image.setOriginOf(Components(axis), 1));
        EXPECT_FALSE(image.setSpacingOf(Components(axis), 1));
        EXPECT_EQ(image.getNumOf(Components(axis)), 0u);
        EXPECT_EQ(image.getOriginOf(Components(axis)), 0.0);
        EXPECT_EQ(image.getSpacingOf(Components(axis)), 0.0);
    }
}

TEST(InMemoryImage, prefersNoSize)
{
    InMemoryImage image;
    image.reserve(QEL_UINT8, 3, 4, 1, 1, 1);
    unsigned long sizes[5] = {11, 12, 13, 14, 15};
    EXPECT_FALSE(image.getPreferedSize(sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]));
    for (unsigned long i = 0; i < 5; ++i)
        EXPECT_EQ(sizes[i], 11 + i);
}

TEST(InMemoryImage, hasItsVoxelsWithoutPaddingColumnsFirst)
{
    for (VoxelTypes const type : {QEL_UINT8, QEL_INT16, QEL_FLOAT32, QEL_COMPLEX_FLOAT64}) {
        InMemoryImage image;
        ASSERT_TRUE(image.reserve(type, 3, 4, 2, 5, 6));
        EXPECT_EQ(image.getVoxelType(), type);
        unsigned long const sizes[] = {3, 4, 2, 5, 6};
        for (Components const axis : AXES)
            EXPECT_EQ(image.getNumOf(axis), sizes[axis]);
        unsigned long const voxelSize = memory::sizeOfVoxelType(type);
        unsigned long offset = 0;
        for (unsigned long s = 0; s < 6; ++s)
            for (unsigned long t = 0; t < 5; ++t)
                for (unsigned long z = 0; z < 2; ++z)
                    for (unsigned long y = 0; y < 4; ++y)
                        for (unsigned long x = 0; x < 3; ++x, offset += voxelSize) {
                            unsigned char* row = nullptr;
                            ASSERT_TRUE(image.getRowAt(1, row, x, y, z, t, s));
                            ASSERT_EQ(row, image.getInternalBuffer() + offset);
                            unsigned char const* constRow = nullptr;
                            ASSERT_TRUE(image.getConstRowAt(3 - x, constRow, x, y, z, t, s));
                            ASSERT_EQ(constRow, row);
                        }
    }
}

TEST(InMemoryImage, givesARowUpToItsLastColumnAndNotBeyond)
{
    InMemoryImage image;
    ASSERT_TRUE(image.reserve(QEL_UINT16, 5, 4, 3, 2, 2));
    unsigned char marker = 0;
    unsigned char* row = &marker;
    EXPECT_FALSE(image.getRowAt(6, row, 0, 0, 0, 0, 0));
    EXPECT_FALSE(image.getRowAt(4, row, 2, 0, 0, 0, 0));
    EXPECT_FALSE(image.getRowAt(0, row, 6, 0, 0, 0, 0));
    EXPECT_FALSE(image.getRowAt(5, row, 0, 4, 0, 0, 0));
    EXPECT_FALSE(image.getRowAt(5, row, 0, 0, 3, 0, 0));
    EXPECT_FALSE(image.getRowAt(5, row, 0, 0, 0, 2, 0));
    EXPECT_FALSE(image.getRowAt(5, row, 0, 0, 0, 0, 2));
    unsigned long const huge = std::numeric_limits<unsigned long>::max();
    EXPECT_FALSE(image.getRowAt(2, row, huge, 0, 0, 0, 0));
    EXPECT_FALSE(image.getRowAt(huge, row, 1, 0, 0, 0, 0));
    EXPECT_EQ(row, &marker);
    EXPECT_TRUE(image.getRowAt(5, row, 0, 3, 2, 1, 1));
    EXPECT_TRUE(image.getRowAt(3, row, 2, 0, 0, 0, 0));
    EXPECT_TRUE(image.getRowAt(0, row, 5, 0, 0, 0, 0));
}

TEST(InMemoryImage, hasNoRowsIfAnAxisHasSizeZero)
{
    for (unsigned long axis = 0; axis < 5; ++axis) {
        unsigned long sizes[5] = {2, 2, 2, 2, 2};
        sizes[axis] = 0;
        InMemoryImage image;
        ASSERT_TRUE(image.reserve(QEL_INT32, sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]));
        SCOPED_TRACE(axis);
        expectNoRows(image);
    }
    InMemoryImage image;
    EXPECT_TRUE(image.reserve(QEL_FLOAT64, 0, 0, 0, 0, 0));
    expectNoRows(image);
}

TEST(InMemoryImage, readsBackWhatWasWrittenInEveryVoxelType)
{
    forEachVoxelType([]<class T>() {
        auto const picture = randomPicture<T>(Shape{7, 5, 3, 2, 2}, 3, true);
        InMemoryImage image;
        ASSERT_TRUE(image.reserve(VoxelTypeOf<T>::value, 7, 5, 3, 2, 2));
        forEachVoxel(Shape{1, 5, 3, 2, 2}, [&](auto, auto row, auto plan, auto time, auto spectral) {
            // In two pieces.
            auto const* voxels = reinterpret_cast<unsigned char const*>(&picture.at(0, row, plan, time, spectral));
            ASSERT_TRUE(image.writeRowAt(3, voxels, 0, row, plan, time, spectral));
            ASSERT_TRUE(image.writeRowAt(4, voxels + 3 * sizeof(T), 3, row, plan, time, spectral));
        });
        EXPECT_TRUE(samePicture(picture, image));
        T voxel{};
        ASSERT_TRUE(image.readRowAt(1, reinterpret_cast<unsigned char*>(&voxel), 6, 4, 2, 1, 0));
        EXPECT_TRUE(sameValue(voxel, picture.at(6, 4, 2, 1, 0)));
    });
}

TEST(InMemoryImage, refusesSizesWhoseProductDoesNotFitAndKeepsWhatItHas)
{
    auto const picture = randomPicture<short>(Shape{4, 3}, 1);
    InMemoryImage image = toImage(picture);
    unsigned long const half = 1ul << 32;
    EXPECT_FALSE(image.reserve(QEL_UINT8, half, half, 1, 1, 1));
    EXPECT_FALSE(image.reserve(QEL_FLOAT64, half, half >> 3, 1, 1, 1));
    EXPECT_FALSE(image.reserve(QEL_UINT8, half - 1, half - 1, half - 1, half - 1, half - 1));
    EXPECT_FALSE(image.reserve(QEL_UINT8, 1ul << 63, 1, 1, 1, 2));
    EXPECT_FALSE(image.reserve(QEL_UINT8, 3, (1ul << 63) + 1, 1, 1, 2));
    EXPECT_TRUE(samePicture(picture, image));
    // Nothing to allocate, however large the other sizes are.
    EXPECT_TRUE(image.reserve(QEL_UINT8, half, half, half, 0, 1));
    EXPECT_EQ(image.getNumOf(PLANS), half);
    expectNoRows(image);
}

TEST(InMemoryImage, isEmptyAfterMemoryRanOut)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers end the program where an allocation fails";
#endif
    InMemoryImage image = toImage(Picture<short>(Shape{4, 3}));
    EXPECT_THROW(image.reserve(QEL_UINT8, 1ul << 62, 1, 1, 1, 1), std::bad_alloc);
    EXPECT_THROW(image.reserve(QEL_UINT8, ~0ul, 1, 1, 1, 1), std::bad_alloc);
    EXPECT_EQ(image.getNumOf(COLUMNS), 0u);
    EXPECT_EQ(image.getInternalBuffer(), nullptr);
    expectNoRows(image);
    EXPECT_TRUE(image.reserve(QEL_UINT8, 2, 2, 1, 1, 1));
}

TEST(InMemoryImage, givesAnUnknownVoxelTypeAnEmptyBuffer)
{
    InMemoryImage image;
    EXPECT_TRUE(image.reserve(VoxelTypes(12), ~0ul, ~0ul, 1, 1, 1));
    EXPECT_EQ(image.getVoxelType(), VoxelTypes(12));
    EXPECT_TRUE(image.reserve(VoxelTypes(12), 3, 2, 1, 1, 1));
    unsigned char voxel = 77;
    EXPECT_TRUE(image.readRowAt(3, &voxel, 0, 1, 0, 0, 0));
    EXPECT_TRUE(image.writeRowAt(3, &voxel, 0, 1, 0, 0, 0));
    EXPECT_EQ(voxel, 77);
}

TEST(InMemoryImage, leavesItsBufferOnInit)
{
    InMemoryImage image = toImage(Picture<unsigned char>(Shape{3, 2}, 9));
    for (Components const axis : AXES) {
        image.setOriginOf(axis, 1);
        image.setSpacingOf(axis, 1);
    }
    image.setInterpretation(QEL_BINARY);
    image.setSpatialUnitName("mm");
    unsigned char const* const buffer = image.getInternalBuffer();
    image.Init();
    EXPECT_EQ(image.getInternalBuffer(), buffer);
    EXPECT_EQ(buffer[5], 9);
    EXPECT_EQ(image.getInterpretation(), QEL_VALUE);
    for (Components const axis : AXES) {
        EXPECT_EQ(image.getNumOf(axis), 0u);
        EXPECT_EQ(image.getOriginOf(axis), 0.0);
        EXPECT_EQ(image.getSpacingOf(axis), 0.0);
    }
    EXPECT_EQ(image.getSpatialUnitName(), String("mm"));
    expectNoRows(image);
    InMemoryImage const copy(image);
    EXPECT_EQ(copy.getNumOf(ROWS), 0u);
}

TEST(InMemoryImage, copiesItsVoxelsAndCalibration)
{
    auto const picture = randomPicture<float>(Shape{5, 4, 3, 2, 2}, 11);
    InMemoryImage image = toImage(picture);
    image.setOriginOf(PLANS, -3);
    image.setSpacingOf(ROWS, 0.5);
    image.setSpatialUnitName("mm");
    image.setTemporalUnitName("s");
    image.setInterpretation(QEL_LABEL);
    InMemoryImage copy(image);
    InMemoryImage assigned = toImage(Picture<double>(Shape{2}));
    assigned = image;
    assigned = *&assigned;
    for (InMemoryImage* const each : {&copy, &assigned}) {
        EXPECT_NE(each->getInternalBuffer(), image.getInternalBuffer());
        EXPECT_TRUE(samePicture(picture, *each));
        EXPECT_TRUE(sameCalibration(image, *each));
        EXPECT_EQ(each->getInterpretation(), QEL_LABEL);
    }
    image.getInternalBuffer()[0] ^= 1;
    EXPECT_TRUE(samePicture(picture, copy));
    InMemoryImage const empty;
    assigned = empty;
    EXPECT_EQ(assigned.getInternalBuffer(), nullptr);
    EXPECT_EQ(assigned.getNumOf(COLUMNS), 0u);
}

/// Has one row only, of its own.
class OneRowImage : public InMemoryImage
{
public:
    bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long, unsigned long, unsigned long,
                  unsigned long, unsigned long) const override
    {
        if (numOfVoxels > 4)
            return false;
        row = voxels;
        return true;
    }
    mutable unsigned char voxels[4] = {1, 2, 3, 4};
};

TEST(InMemoryImage, takesAllFourRowOperationsFromAnOverriddenGetRowAt)
{
    OneRowImage image;
    unsigned char const* row = nullptr;
    EXPECT_TRUE(image.getConstRowAt(4, row, 9, 9, 9, 9, 9));
    EXPECT_EQ(row, image.voxels);
    unsigned char voxels[4] = {};
    EXPECT_TRUE(image.readRowAt(2, voxels, 9, 9, 9, 9, 9));
    EXPECT_EQ(voxels[1], 2);
    voxels[0] = 50;
    EXPECT_TRUE(image.writeRowAt(1, voxels, 9, 9, 9, 9, 9));
    EXPECT_EQ(image.voxels[0], 50);
    EXPECT_FALSE(image.getConstRowAt(5, row, 0, 0, 0, 0, 0));
    EXPECT_FALSE(image.readRowAt(5, voxels, 0, 0, 0, 0, 0));
    EXPECT_FALSE(image.writeRowAt(5, voxels, 0, 0, 0, 0, 0));
}

TEST(InMemoryImage, givesBackTheRowsOfALargeImage)
{
    memory::InMemoryImage image;
    ASSERT_TRUE(image.reserve(QEL_UINT16, 4000, 2100, 1, 1, 1)); // rows of 8000 bytes, written past the caches
    std::vector<unsigned short> row(4000);
    for (unsigned long y = 0; y < 2100; ++y) {
        for (unsigned long x = 0; x < 4000; ++x)
            row[x] = static_cast<unsigned short>(13 * x + 7 * y);
        ASSERT_TRUE(image.writeRowAt(4000, reinterpret_cast<unsigned char const*>(row.data()), 0, y, 0, 0, 0));
    }
    memory::InMemoryImage copy(image);
    unsigned short const inner[] = {1, 2, 3};
    ASSERT_TRUE(copy.writeRowAt(3, reinterpret_cast<unsigned char const*>(inner), 100, 2099, 0, 0, 0));
    ASSERT_TRUE(copy.writeRowAt(1500, reinterpret_cast<unsigned char const*>(row.data()), 1001, 0, 0, 0, 0));
    for (unsigned long y = 0; y < 2100; ++y) {
        ASSERT_TRUE(copy.readRowAt(4000, reinterpret_cast<unsigned char*>(row.data()), 0, y, 0, 0, 0));
        for (unsigned long x = 0; x < 4000; ++x) {
            unsigned long expected = 13 * x + 7 * y;
            if (y == 2099 && x >= 100 && x < 103)
                expected = x - 99;
            if (y == 0 && x >= 1001 && x < 2501)
                expected = 13 * (x - 1001) + 7 * 2099;
            ASSERT_EQ(row[x], static_cast<unsigned short>(expected)) << x << ", " << y;
        }
    }
}

} // namespace
} // namespace qel::test
