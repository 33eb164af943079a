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

TEST_F(MedianFilter2DTest, leavesEmptyImagesEmpty)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 0}, Shape{3, 2, 1, 0}, Shape{3, 2, 1, 1, 0}})
        for (int const mode : {AUTOMATIC, HISTOGRAM, SELECTION}) {
            HostImage const in(QEL_INT16, shape);
            HostImage out;
            connect(in, out, {2}, mode);
            filter->run();
            EXPECT_EQ(out.sizes(), shape);
            EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
            EXPECT_EQ(filter->getProgress(), mode == SELECTION ? 0 : 100);
        }
}

TEST_F(MedianFilter2DTest, copiesAConstantImage)
{
    Shape const shape{12, 10, 3, 2};
    for (int const mode : {AUTOMATIC, HISTOGRAM, SELECTION}) {
        HostImage in(Picture<short>(shape, short(-7)));
        HostImage out;
        connect(in, out, {4}, mode);
        in.forgetCalls();
        filter->run();
        EXPECT_TRUE(samePicture(Picture<short>(shape, short(-7)), out));
        EXPECT_EQ(filter->getProgress(), 100);
        if (mode != SELECTION) {
            EXPECT_EQ(in.callsOf(READ_ROW), 2 * 10 * 3 * 2u); // once for the extrema, and once for the copy
        }

        in.forgetCalls();
        connect(in, in, {4}, mode);
        filter->run();
        if (mode != SELECTION) {
            EXPECT_EQ(in.callsOf(READ_ROW), 10 * 3 * 2u);
            EXPECT_EQ(in.callsOf(WRITE_ROW), 0u);
        }
        EXPECT_TRUE(samePicture(Picture<short>(shape, short(-7)), in));
    }
    HostImage in(Picture<short>(shape, short(3)));
    ImageModelAdapter first(&in, QEL_INT16), second(&in, QEL_INT16);
    connect(*first.getImage(), *second.getImage(), {2}, AUTOMATIC);
    in.forgetCalls();
    filter->run();
    EXPECT_EQ(in.callsOf(WRITE_ROW), 0u);
}

TEST_F(MedianFilter2DTest, givesTheOutputWhatTheInputHas)
{
    HostImage in(nearVoxels<unsigned char>(Shape{5, 4, 2}, 1));
    in.setSpacingOf(ROWS, 2.5);
    in.setOriginOf(PLANS, -3);
    in.setInterpretation(QEL_LABEL);
    HostImage out(QEL_FLOAT64, Shape{2, 2});
    connect(in, out, {1}, AUTOMATIC);
    filter->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 2.5);
    EXPECT_EQ(out.getOriginOf(PLANS), -3);
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TEST_F(MedianFilter2DTest, refusesWrongInputInTheRulesWords)
{
    std::string const name = "MedianFilter2D";
    EXPECT_QEL_WHAT(filter->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    HostImage const in(nearVoxels<float>(Shape{5, 4}, 1));
    filter->input = &in;
    EXPECT_QEL_WHAT(filter->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    HostImage out;
    filter->output = &out;
    filter->neighborhoodSize = 0u;
    EXPECT_QEL_WHAT(
        filter->run(), RuleException,
        ruleText("The parameter \"neighborhoodSize\" must be strictly positive.", "neighborhoodSize", name));
    filter->neighborhoodSize = 1u;
    filter->neighborhoodShape = 2;
    EXPECT_THROW(filter->run(), RuleException);
    filter->neighborhoodShape = 0;
    for (int const mode : {0, 4}) {
        filter->searchMode = mode;
        EXPECT_THROW(filter->run(), RuleException);
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*filter));
}

TEST_F(MedianFilter2DTest, refusesAHistogramOfAllButIntegers)
{
    for (VoxelTypes const type : {QEL_FLOAT32, QEL_FLOAT64, QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64}) {
        HostImage const in(type, Shape{5, 4});
        HostImage out(type, Shape{5, 4});
        connect(in, out, {1}, HISTOGRAM);
        EXPECT_QEL_WHAT(filter->run(), RuleException,
                        "Rule exception :\n#1 Error : The image data type isn't compatible with Histogram computation "
                        "mode. \n#2 From MedianFilter2D \n");
        EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        EXPECT_TRUE(isAtRest(*filter));
    }
    // No body takes them.
    HostImage const in(QEL_COMPLEX_FLOAT32, Shape{5, 4});
    HostImage out(QEL_COMPLEX_FLOAT32, Shape{5, 4});
    connect(in, out, {1}, AUTOMATIC);
    filter->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(MedianFilter2DTest, refusesAHistogramThatNoMemoryHolds)
{
    auto const expectRefusal = [&]<class T>(T low, T high, std::string const& range) {
        Picture<T> picture(Shape{5, 4}, low);
        picture.voxels[7] = high;
        HostImage const in(picture);
        HostImage out(VoxelTypeOf<T>::value, picture.shape);
        connect(in, out, {3}, HISTOGRAM);
        EXPECT_QEL_WHAT(
            filter->run(), UnexpectedError,
            errorText("The available memory does not hold a histogram of the range " + range + ".", "MedianFilter2D"));
        EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        EXPECT_TRUE(isAtRest(*filter));
        for (int const mode : {AUTOMATIC, SELECTION}) {
            connect(in, out, {2}, mode);
            filter->run();
            EXPECT_TRUE(samePicture(medians(picture, {2, false, isVolume}), out));
        }
    };
    expectRefusal(std::numeric_limits<long>::min(), std::numeric_limits<long>::max(), "18446744073709551615");
    expectRefusal(0ul, ~0ul, "18446744073709551615");
    expectRefusal(-1l, 1l << 50, "1125899906842625");
}

TEST_F(MedianFilter2DTest, countsInHistogramModeWhatTheTablesWouldNot)
{
    // A range above what AUTOMATIC ever counts.
    Picture<unsigned long> picture = nearVoxels<unsigned long>(Shape{9, 8}, 1);
    picture.voxels[30] = 0x1fffff;
    HostImage const in(picture);
    for (int const mode : {HISTOGRAM, AUTOMATIC, SELECTION}) {
        HostImage out;
        connect(in, out, {4}, mode);
        filter->run();
        EXPECT_TRUE(samePicture(medians(picture, {4, false, isVolume}), out));
    }
}

TEST_F(MedianFilter2DTest, takesTwoStepsWhereARangeIsNeededAndElseOne)
{
    std::vector<double> seen;
    auto const run = [&](ObservedImage& in, int mode) {
        seen.clear();
        HostImage out;
        connect(in, out, {1}, mode);
        in.onRead = [&] { seen.push_back(filter->getProgress()); };
        withThreads(1, [&] { filter->run(); });
        EXPECT_EQ(filter->getProgress(), 100);
        EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    };
    Shape const shape{10, 300, 2};
    ObservedImage bytes(nearVoxels<unsigned char>(shape, 1));
    for (int const mode : {AUTOMATIC, HISTOGRAM}) {
        run(bytes, mode);
        EXPECT_EQ(seen[0], 0);
        EXPECT_EQ(seen[600], 50); // each row has been read for the extrema
    }
    run(bytes, SELECTION);
    EXPECT_EQ(seen[0], 0);
    EXPECT_GT(seen.back(), 40);
    ObservedImage reals(nearVoxels<float>(shape, 1));
    run(reals, AUTOMATIC);
    EXPECT_EQ(seen[0], 0);
}

TEST_F(MedianFilter2DTest, stopsWhenItIsCancelled)
{
    ObservedImage in(nearVoxels<unsigned char>(Shape{40, 700, 2, 3}, 1));
    HostImage out;
    connect(in, out, {1}, AUTOMATIC);
    for (unsigned long const after : {0ul, 4000ul, 4300ul}) {
        out.forgetCalls();
        std::atomic<unsigned long> reads = 0;
        in.onRead = [&] {
            if (++reads > after)
                filter->cancelExecution();
        };
        filter->run();
        EXPECT_LT(out.callsOf(WRITE_ROW), 4200u);
        EXPECT_LT(filter->getProgress(), after == 0 ? 50 : 100);
        EXPECT_TRUE(isAtRest(*filter));
    }
    in.onRead = nullptr;
    filter->run();
    EXPECT_EQ(filter->getProgress(), 100);

    ObservedImage reals(nearVoxels<float>(Shape{40, 700}, 1));
    reals.onRead = [&] { filter->cancelExecution(); };
    out.forgetCalls();
    connect(reals, out, {2}, AUTOMATIC);
    filter->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 700u);

    in.onRead = [&] { filter->cancelExecution(); };
    HostImage constant(Picture<int>(Shape{6, 5}, 1));
    connect(constant, out, {2}, AUTOMATIC);
    filter->run(); // with nothing left of the earlier request
    EXPECT_TRUE(samePicture(Picture<int>(Shape{6, 5}, 1), out));
}

TEST_F(MedianFilter2DTest, reportsWhatAnImageDoesWrong)
{
    auto const picture = nearVoxels<float>(Shape{40, 25}, 1);
    Picture<float> const expected = medians(picture, {1, false, isVolume});
    expectFailingImagesAreReported<MedianFilter2D>(
        [&](MedianFilter2D& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(QEL_FLOAT32, picture.shape));
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
            algorithm.neighborhoodSize = 1u;
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

TEST_F(MedianFilter2DTest, raisesTheErrorsOfItsChildren)
{
    HostImage in(nearVoxels<unsigned char>(Shape{8, 6}, 1));
    HostImage out;
    connect(in, out, {1}, AUTOMATIC);
    in.failOn(READ_ROW);
    EXPECT_QEL_WHAT(filter->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in readRowAt implementation, return value is false \n#2 From "
                    "IntensityExtrema \n#3 From MedianFilter2D \n");
    HostImage constant(Picture<int>(Shape{6, 5}, 1));
    connect(constant, out, {1}, AUTOMATIC);
    out.failOn(WRITE_ROW);
    EXPECT_QEL_WHAT(
        filter->run(), UnexpectedError,
        "Unexpected error :\n#1 Error : Error in writeRowAt implementation, return value is false \n#2 From "
        "CopyImage \n#3 From MedianFilter2D \n");
    EXPECT_TRUE(isAtRest(*filter));
}

TEST_F(MedianFilter2DTest, runsUnderAHostThatPolls)
{
    auto const picture = nearVoxels<unsigned short>(Shape{60, 40}, 1);
    HostImage const in(picture);
    HostImage out;
    connect(in, out, {2}, AUTOMATIC);
    Poller poller;
    filter->run(&poller);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_EQ(poller.last, 100);
    EXPECT_TRUE(samePicture(medians(picture, {2, false, isVolume}), out));
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
