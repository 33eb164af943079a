// A comparison that never fails would hide every wrong voxel, so the support of the tests is tested too.
#include "Core/tests/Support/Support.h"

#include "Core/private/Throw.h"

#include <algorithm>
#include <limits>
#include <string>
#include <thread>

namespace qel::test {
namespace {

TEST(Support, namesTheFirstWrongVoxel)
{
    Picture<unsigned char> const expected(Shape{3, 2, 2, 2, 2}, 7);
    Picture<unsigned char> actual = expected;
    EXPECT_TRUE(samePicture(expected, actual));
    actual.at(2, 1, 0, 1, 1) = 200;
    actual.at(0, 0, 1, 1, 1) = 9;
    auto const result = samePicture(expected, toImage(actual));
    EXPECT_FALSE(result);
    EXPECT_EQ(std::string(result.message()), "uint8 3x2x2x2x2: 2 of 48 voxels are wrong, the first at (2, 1, 0, 1, 1): "
                                             "expected 7, got 200");
}

TEST(Support, seesAnotherShapeAndAnotherType)
{
    EXPECT_FALSE(samePicture(Picture<float>(Shape{3, 2}), Picture<float>(Shape{2, 3})));
    EXPECT_FALSE(samePicture(Picture<float>(Shape{3, 2}), toImage(Picture<double>(Shape{3, 2}))));
    EXPECT_THROW(fromImage<short>(toImage(Picture<double>(Shape{3, 2}))), std::runtime_error);
}

TEST(Support, takesNaNForEqualToNaNOnly)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(samePicture(Picture<float>(Shape{2}, {nan, 1}), Picture<float>(Shape{2}, {nan, 1})));
    EXPECT_FALSE(samePicture(Picture<float>(Shape{2}, {nan, 1}), Picture<float>(Shape{2}, {0, 1})));
    EXPECT_FALSE(samePicture(Picture<float>(Shape{2}, {0, 1}), Picture<float>(Shape{2}, {nan, 1})));
}

TEST(Support, seesAnotherCalibration)
{
    HostImage const image(Picture<short>(Shape{2}));
    HostImage other(Picture<short>(Shape{2}));
    EXPECT_TRUE(sameCalibration(image, other));
    other.setOriginOf(PLANS, 1);
    EXPECT_FALSE(sameCalibration(image, other));
    other.setOriginOf(PLANS, 0);
    other.setSpacingOf(TIME_SERIES, 2);
    EXPECT_FALSE(sameCalibration(image, other));
    other.setSpacingOf(TIME_SERIES, 1);
    other.setSpatialUnitName("mm");
    EXPECT_FALSE(sameCalibration(image, other));
    other.setSpatialUnitName("");
    other.setTemporalUnitName("s");
    EXPECT_FALSE(sameCalibration(image, other));
}

TEST(Support, hasTheSamePictureForTheSameSeed)
{
    forEachVoxelType([]<class T>() {
        auto const picture = randomPicture<T>(Shape{40, 30}, 1, true);
        EXPECT_TRUE(samePicture(picture, randomPicture<T>(Shape{40, 30}, 1, true)));
        EXPECT_FALSE(samePicture(picture, randomPicture<T>(Shape{40, 30}, 2, true)));
        auto const& voxels = picture.voxels;
        EXPECT_NE(std::count(voxels.begin(), voxels.end(), std::numeric_limits<T>::max()), 0);
        EXPECT_NE(std::count(voxels.begin(), voxels.end(), std::numeric_limits<T>::lowest()), 0);
        for (T const voxel : randomPictureBetween<T>(Shape{1000}, 3, T(5), T(9)).voxels) {
            EXPECT_GE(voxel, T(5));
            EXPECT_LE(voxel, T(9));
        }
    });
}

TEST(Support, passesItsOwnImagesThrough)
{
    forEachVoxelType([]<class T>() {
        auto const picture = randomPicture<T>(Shape{4, 3, 2, 2, 2}, 5);
        EXPECT_TRUE(samePicture(picture, toImage(picture)));
        EXPECT_TRUE(samePicture(picture, HostImage(picture)));
    });
    EXPECT_TRUE(samePicture(Picture<int>(), toImage(Picture<int>())));
}

TEST(HostImage, refusesOrThrowsWhenTold)
{
    HostImage image(Picture<short>(Shape{2}, 3));
    short row[2] = {};
    auto* const bytes = reinterpret_cast<unsigned char*>(row);
    image.failOn(READ_ROW, 1).throwOn(READ_ROW, 2);
    EXPECT_TRUE(image.readRowAt(2, bytes, 0, 0, 0, 0, 0));
    EXPECT_FALSE(image.readRowAt(2, bytes, 0, 0, 0, 0, 0));
    EXPECT_THROW(image.readRowAt(2, bytes, 0, 0, 0, 0, 0), HostFailure);
    EXPECT_EQ(image.callsOf(READ_ROW), 3u);
    image.behave();
    EXPECT_TRUE(image.readRowAt(2, bytes, 0, 0, 0, 0, 0));
    std::thread([&] { image.readRowAt(2, bytes, 0, 0, 0, 0, 0); }).join();
    EXPECT_EQ(image.foreignCallsOf(READ_ROW), 1u);
    unsigned char* direct = nullptr;
    EXPECT_FALSE(image.getRowAt(1, direct, 0, 0, 0, 0, 0));
    image.giveRows();
    EXPECT_TRUE(image.getRowAt(1, direct, 1, 0, 0, 0, 0));
    EXPECT_EQ(direct, image.content().data() + 2);
    image.failOn(SET_ORIGIN);
    EXPECT_FALSE(image.setOriginOf(ROWS, 4));
    EXPECT_EQ(image.getOriginOf(ROWS), 0);
}

TEST(Support, looksAtTypeAndTextOfAnException)
{
    auto const fail = [] { QEL_THROW(BadIndex, "no " << 5); };
    EXPECT_QEL_THROW(fail(), BadIndex, "no 5");
    EXPECT_QEL_WHAT(fail(), BadIndex, "Bad index :\n#1 Error : no 5 \n");
    EXPECT_FALSE(throwsText<BadIndex>(fail, deepestMessage, "no 6"));
    EXPECT_FALSE(throwsText<ProcessingException>(fail, deepestMessage, "no 5"));
    EXPECT_FALSE(throwsText<BadIndex>([] {}, deepestMessage, "no 5"));
    EXPECT_FALSE(throwsText<BadIndex>([] { throw HostFailure(); }, deepestMessage, "host failure"));
    EXPECT_FALSE(throwsText<BadIndex>([] { throw 1; }, deepestMessage, ""));
}

TEST(Support, runsWithTheGivenNumberOfThreads)
{
    for (int const threads : {1, 2, 4, 7})
        EXPECT_EQ(withThreads(threads, [] { return tbb::this_task_arena::max_concurrency(); }), threads);
    EXPECT_THROW(withThreads(2, []() -> int { throw HostFailure(); }), HostFailure);
}

TEST(Support, removesItsTemporaryFolder)
{
    std::string path;
    {
        TemporaryFolder const folder;
        path = folder / "file";
        writeFile(path, std::string("a\0b", 3));
        EXPECT_EQ(readFile(path), std::string("a\0b", 3));
    }
    EXPECT_THROW(readFile(path), std::runtime_error);
}

} // namespace
} // namespace qel::test
