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

TEST_F(MedianFilter3DTest, leavesEmptyImagesEmpty)
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

TEST_F(MedianFilter3DTest, copiesAConstantImage)
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

TEST_F(MedianFilter3DTest, givesTheOutputWhatTheInputHas)
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

TEST_F(MedianFilter3DTest, refusesWrongInputInTheRulesWords)
{
    std::string const name = "MedianFilter3D";
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

TEST_F(MedianFilter3DTest, refusesAHistogramOfAllButIntegers)
{
    for (VoxelTypes const type : {QEL_FLOAT32, QEL_FLOAT64, QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64}) {
        HostImage const in(type, Shape{5, 4});
        HostImage out(type, Shape{5, 4});
        connect(in, out, {1}, HISTOGRAM);
        EXPECT_QEL_WHAT(filter->run(), RuleException,
                        "Rule exception :\n#1 Error : The image data type isn't compatible with Histogram computation "
                        "mode. \n#2 From MedianFilter3D \n");
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

TEST_F(MedianFilter3DTest, refusesAHistogramThatNoMemoryHolds)
{
    auto const expectRefusal = [&]<class T>(T low, T high, std::string const& range) {
        Picture<T> picture(Shape{5, 4}, low);
        picture.voxels[7] = high;
        HostImage const in(picture);
        HostImage out(VoxelTypeOf<T>::value, picture.shape);
        connect(in, out, {3}, HISTOGRAM);
        EXPECT_QEL_WHAT(
            filter->run(), UnexpectedError,
            errorText("The available memory does not hold a histogram of the range " + range + ".", "MedianFilter3D"));
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

TEST_F(MedianFilter3DTest, countsInHistogramModeWhatTheTablesWouldNot)
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

TEST_F(MedianFilter3DTest, takesTwoStepsWhereARangeIsNeededAndElseOne)
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
    EXPECT_GT(seen.back(), 0);
    ObservedImage reals(nearVoxels<float>(shape, 1));
    run(reals, AUTOMATIC);
    EXPECT_EQ(seen[0], 0);
}

TEST_F(MedianFilter3DTest, stopsWhenItIsCancelled)
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

TEST_F(MedianFilter3DTest, reportsWhatAnImageDoesWrong)
{
    auto const picture = nearVoxels<float>(Shape{40, 25}, 1);
    Picture<float> const expected = medians(picture, {1, false, isVolume});
    expectFailingImagesAreReported<MedianFilter3D>(
        [&](MedianFilter3D& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(QEL_FLOAT32, picture.shape));
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
            algorithm.neighborhoodSize = 1u;
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

TEST_F(MedianFilter3DTest, raisesTheErrorsOfItsChildren)
{
    HostImage in(nearVoxels<unsigned char>(Shape{8, 6}, 1));
    HostImage out;
    connect(in, out, {1}, AUTOMATIC);
    in.failOn(READ_ROW);
    EXPECT_QEL_WHAT(filter->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in readRowAt implementation, return value is false \n#2 From "
                    "IntensityExtrema \n#3 From MedianFilter3D \n");
    HostImage constant(Picture<int>(Shape{6, 5}, 1));
    connect(constant, out, {1}, AUTOMATIC);
    out.failOn(WRITE_ROW);
    EXPECT_QEL_WHAT(
        filter->run(), UnexpectedError,
        "Unexpected error :\n#1 Error : Error in writeRowAt implementation, return value is false \n#2 From "
        "CopyImage \n#3 From MedianFilter3D \n");
    EXPECT_TRUE(isAtRest(*filter));
}

TEST_F(MedianFilter3DTest, runsUnderAHostThatPolls)
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
