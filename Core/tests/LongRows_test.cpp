#include "Core/private/LongRows.h"

#include "Core/private/Helper/underlyingImage.h"
#include "Core/tests/Support/Support.h"

#include <algorithm>

namespace qel::test {
namespace {

Shape shownShapeOf(Shape const& shape)
{
    memory::InMemoryImage const image = toImage(Picture<unsigned char>(shape));
    return shapeOf(*LongRows({&image})[0]);
}

TEST(LongRows, joinShortRowsToAboutFourThousandVoxels)
{
    EXPECT_EQ(shownShapeOf({256, 256, 256}), (Shape{4096, 4096, 1}));
    EXPECT_EQ(shownShapeOf({64, 64, 1}), (Shape{4096, 1, 1}));
    EXPECT_EQ(shownShapeOf({1000, 6, 5}), (Shape{3000, 10, 1}));
    EXPECT_EQ(shownShapeOf({1, 3, 2}), (Shape{6, 1, 1}));
    EXPECT_EQ(shownShapeOf({33, 5, 3, 2, 4}), (Shape{495, 1, 1, 2, 4}));
}

TEST(LongRows, leaveImagesWhoseRowsAreLongOrDoNotDivide)
{
    for (Shape const shape : {Shape{4096, 4, 1}, Shape{2049, 4, 4}, Shape{100, 211, 1}, Shape{0, 4, 4}, Shape{4, 0, 4}})
        EXPECT_EQ(shownShapeOf(shape), shape);
}

TEST(LongRows, leaveAllImagesWhereOneIsOfTheHostOrOfAnotherSize)
{
    memory::InMemoryImage const image = toImage(Picture<unsigned char>(Shape{8, 6, 2}));
    memory::InMemoryImage const other = toImage(Picture<float>(Shape{8, 6, 2}));
    memory::InMemoryImage const turned = toImage(Picture<float>(Shape{8, 2, 6}));
    HostImage const host(Picture<float>(Shape{8, 6, 2}));
    class Derived : public memory::InMemoryImage
    {
    } const derived;
    LongRows const both({&image, &other, &image});
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(shapeOf(*both[i]), (Shape{96, 1, 1}));
    EXPECT_EQ(LongRows({&image, &turned})[0], &image);
    EXPECT_EQ(LongRows({&image, &turned})[1], &turned);
    EXPECT_EQ(LongRows({&image, &host})[0], &image);
    EXPECT_EQ(LongRows({&host})[0], &host);
    EXPECT_EQ(LongRows({&derived})[0], &derived);
}

TEST(LongRows, areRowsOfTheImageItself)
{
    auto const picture = randomPicture<unsigned short>(Shape{30, 6, 4, 3, 2}, 5);
    memory::InMemoryImage image = toImage(picture);
    LongRows const rows({&image});
    ImageModel& shown = *rows[0];
    EXPECT_EQ(helper::underlyingImage(&shown), &image);
    EXPECT_EQ(shown.getVoxelType(), QEL_UINT16);
    ASSERT_EQ(shapeOf(shown), (Shape{720, 1, 1, 3, 2}));
    EXPECT_TRUE(samePicture(Picture<unsigned short>(shapeOf(shown), picture.voxels), shown));

    // Any part of a row, in any series, and nothing beyond.
    unsigned short voxels[50] = {};
    auto* const bytes = reinterpret_cast<unsigned char*>(voxels);
    ASSERT_TRUE(shown.readRowAt(50, bytes, 25, 0, 0, 2, 1));
    EXPECT_TRUE(std::equal(voxels, voxels + 50, &picture.at(25, 0, 0, 2, 1)));
    std::fill_n(voxels, 50, static_cast<unsigned short>(9));
    ASSERT_TRUE(shown.writeRowAt(50, bytes, 100, 0, 0, 1, 1));
    auto expected = picture;
    std::fill_n(&expected.at(100 % 30, 100 / 30, 0, 1, 1), 50, static_cast<unsigned short>(9));
    EXPECT_TRUE(samePicture(expected, image));
    unsigned char* row = nullptr;
    unsigned char const* constRow = nullptr;
    ASSERT_TRUE(shown.getRowAt(720, row, 0, 0, 0, 1, 1));
    ASSERT_TRUE(shown.getConstRowAt(1, constRow, 7, 0, 0, 1, 1));
    EXPECT_EQ(row + 2 * 7, constRow);
    EXPECT_EQ(row, image.getInternalBuffer() + 2 * image.getNumOf(COLUMNS) * 6 * 4 * (3 + 1));
    for (unsigned long const beyond : {0, 1, 2, 3, 4}) {
        unsigned long const at[] = {beyond == 0 ? 671ul : 0, beyond == 1, beyond == 2, beyond == 3 ? 3ul : 0,
                                    beyond == 4 ? 2ul : 0};
        EXPECT_FALSE(shown.readRowAt(50, bytes, at[0], at[1], at[2], at[3], at[4]));
        EXPECT_FALSE(shown.writeRowAt(50, bytes, at[0], at[1], at[2], at[3], at[4]));
        EXPECT_FALSE(shown.getRowAt(50, row, at[0], at[1], at[2], at[3], at[4]));
        EXPECT_FALSE(shown.getConstRowAt(50, constRow, at[0], at[1], at[2], at[3], at[4]));
    }
    EXPECT_TRUE(samePicture(expected, image));
}

} // namespace
} // namespace qel::test
