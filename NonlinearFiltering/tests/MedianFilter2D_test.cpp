#include "NonlinearFiltering/tests/MedianModel.h"

namespace qel::test {
namespace {

using namespace nonlinear_filtering;

using MedianFilter2DTest = MedianFilterTest<MedianFilter2D>;

TEST_F(MedianFilter2DTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("MedianFilter2D"), MedianFilter2D::getClassInfo());
    ASSERT_EQ(filter->getNumOfInputProperties(), 4u);
    EXPECT_EQ(filter->getInputProperty(0), &filter->input);
    EXPECT_EQ(filter->getInputProperty(1), &filter->neighborhoodSize);
    EXPECT_EQ(described(filter->getInputProperty(2)), "NeighborhoodShape2DType neighborhoodShape = QEL_SQUARE");
    EXPECT_EQ(described(filter->getInputProperty(3)), "MedianComputationType searchMode = AUTOMATIC");
    EXPECT_EQ(describedOutputs(*filter), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(filter->neighborhoodSize.get(), 3u);
    EXPECT_EQ(filter->neighborhoodSize.getName(), String("neighborhoodSize"));
    EXPECT_EQ(filter->neighborhoodShape.getEnumInfo()->getLabelFromValue(1), String("QEL_DISK"));
    EXPECT_EQ(filter->searchMode.getEnumInfo()->getLabelFromValue(2), String("HISTOGRAM"));
    EXPECT_EQ(filter->searchMode.getEnumInfo()->getLabelFromValue(3), String("SELECTION"));
    EXPECT_EQ(levelsOf(*filter), std::vector<OptimLevelType>{SCALAR});
    filter->neighborhoodSize = 7u;
    AlgoBorderInfluence const influence = filter->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), direction <= ROWS_POSITIVE ? 7 : 0);
}

TEST_F(MedianFilter2DTest, followsTheModelForEveryVoxelTypeAndWindow)
{
    unsigned seed = 1;
    FewerRounds rounds;
    forEachVoxelType([&]<class T>() {
        for (bool const isRound : {false, true})
            for (long const radius : {1, 2, 3, 4, 5}) {
                if (rounds.leaveThisOut())
                    continue;
                expectModel(nearVoxels<T>(Shape{23, 17, 2}, seed++), {radius, isRound});
                expectModel(randomPicture<T>(Shape{37, 9}, seed++, true), {radius, isRound});
            }
    });
}

TEST_F(MedianFilter2DTest, followsTheModelUnderLargeWindows)
{
    unsigned seed = 1;
    FewerRounds rounds;
    forEachVoxelType([&]<class T>() {
        for (bool const isRound : {false, true}) {
            if (rounds.leaveThisOut())
                continue;
            expectModel(nearVoxels<T>(Shape{41, 30}, seed++), {12, isRound});
            expectModel(randomPicture<T>(Shape{33, 18}, seed++), {8, isRound});
        }
    });
}

TEST_F(MedianFilter2DTest, followsTheModelWhereItsMethodsChange)
{
    // From column histograms to sliding, and from networks to either, and images whose range is one byte.
    unsigned seed = 1;
    expectModel(nearVoxels<unsigned char>(Shape{7, 5}, seed++), {90});
    expectModel(nearVoxels<unsigned char>(Shape{7, 5}, seed++), {91});
    expectModel(randomPicture<signed char>(Shape{30, 40}, seed++), {9});
    expectModel(randomPicture<unsigned char>(Shape{530, 9}, seed++), {6});
    expectModel(randomPicture<unsigned char>(Shape{9, 270}, seed++), {5});
    expectModel(randomPictureBetween<long>(Shape{40, 30}, seed++, -128, 127), {6});
    expectModel(randomPictureBetween<short>(Shape{40, 30}, seed++, -32768, -32513), {3, true});
    expectModel(randomPictureBetween<unsigned long>(Shape{40, 30}, seed++, ~0ul - 256, ~0ul), {5});
    expectModel(randomPictureBetween<int>(Shape{40, 30}, seed++, -100, 200), {7, true});
    expectModel(randomPicture<double>(Shape{25, 9}, seed++, true), {23});
}

TEST_F(MedianFilter2DTest, reflectsTheImageAsOftenAsTheWindowNeeds)
{
    unsigned seed = 1;
    for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{7, 1}, Shape{2, 3}, Shape{5, 4, 2}})
        for (Window const& window : {Window{1}, Window{2, true}, Window{3}, Window{12}, Window{12, true}}) {
            expectModel(randomPicture<unsigned char>(shape, seed++), window);
            expectModel(randomPicture<short>(shape, seed++), window);
            expectModel(randomPicture<double>(shape, seed++), window);
        }
}

TEST_F(MedianFilter2DTest, followsTheModelForEveryShape)
{
    unsigned seed = 1;
    FewerRounds rounds(3);
    for (Shape const& shape : allShapes()) {
        if (rounds.leaveThisOut())
            continue;
        expectModel(nearVoxels<unsigned char>(shape, seed++), {1});
        expectModel(nearVoxels<signed char>(shape, seed++), {4});
        expectModel(randomPicture<unsigned short>(shape, seed++), {2, true});
    }
    expectModel(randomPicture<float>(Shape{1025, 11}, seed, true), {3});
    expectModel(randomPicture<int>(Shape{2051, 23}, seed, true), {5, true});
    expectModel(nearVoxels<unsigned char>(Shape{2100, 150}, seed), {5});
    expectModel(nearVoxels<unsigned short>(Shape{530, 300}, seed, 3000), {6, true});
}

TEST_F(MedianFilter2DTest, givesTheSameInPlace)
{
    unsigned seed = 1;
    FewerRounds rounds;
    forEachVoxelType([&]<class T>() {
        for (Window const& window : {Window{1}, Window{1, true}, Window{3}, Window{6, true}})
            if (!rounds.leaveThisOut())
                expectModelInPlace(nearVoxels<T>(Shape{45, 33, 2}, seed++), window);
    });
    expectModelInPlace(nearVoxels<unsigned char>(Shape{2100, 23, 1, 2, 2}, seed), {2});
    expectModelInPlace(nearVoxels<unsigned char>(Shape{1030, 300}, seed), {5});
    expectModelInPlace(randomPicture<float>(Shape{1500, 150}, seed), {4});
}

TEST_F(MedianFilter2DTest, putsNaNBehindAllNumbers)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    for (float const bad : {nan, -nan}) {
        Picture<float> picture(Shape{31, 9}, 1.f);
        for (unsigned long row = 2; row < 7; row += 2)
            for (unsigned long column = 2; column < 29; column += 2)
                picture.at(column, row) = bad;
        HostImage const in(picture);
        for (Window const& window : {Window{1}, Window{4}, Window{9}}) {
            HostImage out;
            connect(in, out, window, AUTOMATIC);
            filter->run();
            EXPECT_TRUE(samePicture(Picture<float>(picture.shape, 1.f), out));
        }
        for (std::size_t i = 0; i < picture.voxels.size(); ++i)
            picture.voxels[i] = i % 5 == 0 ? 1.f : bad;
        HostImage const worse(picture);
        HostImage out;
        connect(worse, out, {4}, SELECTION);
        filter->run();
        for (float const voxel : fromImage<float>(out).voxels) {
            ASSERT_TRUE(std::isnan(voxel));
            ASSERT_FALSE(std::signbit(voxel));
        }
    }
    Picture<double> zeros(Shape{3, 3}, 0.0);
    for (int i = 0; i < 4; ++i)
        zeros.voxels[static_cast<std::size_t>(i)] = -0.0;
    expectModel(zeros, {1});
}

TEST_F(MedianFilter2DTest, removesSpecksAndKeepsEdges)
{
    Picture<unsigned char> edge(Shape{20, 20}), noisy;
    for (unsigned long r = 0; r < 20; ++r)
        for (unsigned long c = 10; c < 20; ++c)
            edge.at(c, r) = 200;
    noisy = edge;
    noisy.at(3, 3) = 255;
    noisy.at(4, 3) = 255;
    noisy.at(15, 12) = 0;
    HostImage const in(noisy);
    HostImage out;
    connect(in, out, {1}, AUTOMATIC);
    filter->run();
    EXPECT_TRUE(samePicture(edge, out));
}

TEST_F(MedianFilter2DTest, refusesWindowsThatNoMemoryHolds)
{
    auto const picture = nearVoxels<unsigned char>(Shape{9, 7}, 1);
    HostImage const in(picture);
    for (bool const isRound : {false, true})
        for (unsigned int const radius : {4000000000u, 1000000u}) {
            HostImage out(QEL_UINT8, picture.shape);
            connect(in, out, {static_cast<long>(radius), isRound}, AUTOMATIC);
            EXPECT_QEL_WHAT(
                filter->run(), UnexpectedError,
                errorText("The available memory does not hold a window of radius " + std::to_string(radius) + ".",
                          "MedianFilter2D"));
            EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
            EXPECT_TRUE(isAtRest(*filter));
        }
    expectModel(nearVoxels<unsigned char>(Shape{3, 2}, 1), {60});
}

} // namespace
} // namespace qel::test
