#include "NonlinearFiltering/tests/MedianModel.h"

namespace qel::test {
namespace {

using namespace nonlinear_filtering;

using MedianFilter3DTest = MedianFilterTest<MedianFilter3D>;

TEST_F(MedianFilter3DTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("MedianFilter3D"), MedianFilter3D::getClassInfo());
    ASSERT_EQ(filter->getNumOfInputProperties(), 4u);
    EXPECT_EQ(filter->getInputProperty(0), &filter->input);
    EXPECT_EQ(filter->getInputProperty(1), &filter->neighborhoodSize);
    EXPECT_EQ(described(filter->getInputProperty(2)), "NeighborhoodShape3DType neighborhoodShape = QEL_CUBE");
    EXPECT_EQ(described(filter->getInputProperty(3)), "MedianComputationType searchMode = AUTOMATIC");
    EXPECT_EQ(describedOutputs(*filter), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(filter->neighborhoodSize.get(), 3u);
    EXPECT_EQ(filter->neighborhoodSize.getName(), String("neighborhoodSize"));
    EXPECT_EQ(filter->neighborhoodShape.getEnumInfo()->getLabelFromValue(1), String("QEL_BALL"));
    EXPECT_EQ(filter->searchMode.getEnumInfo()->getLabelFromValue(2), String("HISTOGRAM"));
    EXPECT_EQ(filter->searchMode.getEnumInfo()->getLabelFromValue(3), String("SELECTION"));
    EXPECT_EQ(levelsOf(*filter), std::vector<OptimLevelType>{SCALAR});
    filter->neighborhoodSize = 7u;
    AlgoBorderInfluence const influence = filter->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= PLANS_POSITIVE ? 7 : 0);
}

TEST_F(MedianFilter3DTest, followsTheModelForEveryVoxelTypeAndWindow)
{
    unsigned seed = 1;
    FewerRounds rounds;
    forEachVoxelType([&]<class T>() {
        for (bool const isRound : {false, true})
            for (long const radius : {1, 2, 3}) {
                if (rounds.leaveThisOut())
                    continue;
                expectModel(nearVoxels<T>(Shape{11, 7, 5}, seed++), {radius, isRound, true});
                expectModel(randomPicture<T>(Shape{17, 4, 6}, seed++, true), {radius, isRound, true});
            }
    });
    expectModel(randomPicture<short>(Shape{19, 12, 7}, seed++, true), {5, false, true});
    expectModel(nearVoxels<unsigned char>(Shape{19, 12, 7}, seed++), {5, true, true});
}

TEST_F(MedianFilter3DTest, reflectsTheImageAsOftenAsTheWindowNeeds)
{
    unsigned seed = 1;
    for (Shape const& shape : {Shape{1, 1}, Shape{1, 1, 7}, Shape{7, 1}, Shape{2, 3, 1}, Shape{5, 4, 2}})
        for (Window const& window : {Window{1, false, true}, Window{2, true, true}, Window{6, false, true}}) {
            expectModel(randomPicture<unsigned char>(shape, seed++), window);
            expectModel(randomPicture<short>(shape, seed++), window);
            expectModel(randomPicture<double>(shape, seed++), window);
        }
}

TEST_F(MedianFilter3DTest, followsTheModelForEveryShape)
{
    unsigned seed = 1;
    FewerRounds rounds(3);
    for (Shape const& shape : allShapes()) {
        if (rounds.leaveThisOut())
            continue;
        expectModel(nearVoxels<unsigned char>(shape, seed++), {1, false, true});
        expectModel(randomPicture<unsigned short>(shape, seed++), {2, true, true});
    }
    expectModel(randomPicture<float>(Shape{35, 40, 45}, seed, true), {1, false, true});
    expectModel(nearVoxels<unsigned char>(Shape{1030, 11, 12}, seed), {2, false, true});
}

TEST_F(MedianFilter3DTest, givesTheSameInPlace)
{
    unsigned seed = 1;
    FewerRounds rounds;
    forEachVoxelType([&]<class T>() {
        for (Window const& window : {Window{1, false, true}, Window{2, true, true}, Window{3, false, true}})
            if (!rounds.leaveThisOut())
                expectModelInPlace(nearVoxels<T>(Shape{7, 23, 13}, seed++), window);
    });
    expectModelInPlace(nearVoxels<unsigned char>(Shape{40, 50, 70, 1, 2}, seed), {1, false, true});
    expectModelInPlace(nearVoxels<float>(Shape{1030, 12, 11}, seed), {1, true, true});
}

TEST_F(MedianFilter3DTest, putsNaNBehindAllNumbers)
{
    Picture<double> picture(Shape{9, 8, 7}, 1.0);
    for (std::size_t i = 0; i < picture.voxels.size(); i += 7)
        picture.voxels[i] = -std::numeric_limits<double>::quiet_NaN();
    HostImage const in(picture);
    for (Window const& window : {Window{1, false, true}, Window{4, false, true}}) {
        HostImage out;
        connect(in, out, window, AUTOMATIC);
        filter->run();
        EXPECT_TRUE(samePicture(Picture<double>(picture.shape, 1.0), out));
    }
}

TEST_F(MedianFilter3DTest, refusesWindowsThatNoMemoryHolds)
{
    HostImage const in(nearVoxels<unsigned char>(Shape{9, 7, 3}, 1));
    for (bool const isRound : {false, true})
        for (unsigned int const radius : {4000000000u, 100000u}) {
            HostImage out(QEL_UINT8, Shape{9, 7, 3});
            connect(in, out, {static_cast<long>(radius), isRound, true}, AUTOMATIC);
            EXPECT_QEL_WHAT(
                filter->run(), UnexpectedError,
                errorText("The available memory does not hold a window of radius " + std::to_string(radius) + ".",
                          "MedianFilter3D"));
            EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        }
}

} // namespace
} // namespace qel::test
