// What both median filters do alike.
#include "NonlinearFiltering/tests/MedianModel.h"

namespace qel::test {
namespace {

using namespace nonlinear_filtering;

using MedianFilters = testing::Types<MedianFilter2D, MedianFilter3D>;
TYPED_TEST_SUITE(MedianFilterTest, MedianFilters);

TYPED_TEST(MedianFilterTest, leavesEmptyImagesEmpty)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 0}, Shape{3, 2, 1, 0}, Shape{3, 2, 1, 1, 0}})
        for (int const mode : {AUTOMATIC, HISTOGRAM, SELECTION}) {
            HostImage const in(QEL_INT16, shape);
            HostImage out;
            this->connect(in, out, {2}, mode);
            this->filter->run();
            EXPECT_EQ(out.sizes(), shape);
            EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
            EXPECT_EQ(this->filter->getProgress(), mode == SELECTION ? 0 : 100);
        }
}

TYPED_TEST(MedianFilterTest, copiesAConstantImage)
{
    Shape const shape{12, 10, 3, 2};
    for (int const mode : {AUTOMATIC, HISTOGRAM, SELECTION}) {
        HostImage in(Picture<short>(shape, short(-7)));
        HostImage out;
        this->connect(in, out, {4}, mode);
        in.forgetCalls();
        this->filter->run();
        EXPECT_TRUE(samePicture(Picture<short>(shape, short(-7)), out));
        EXPECT_EQ(this->filter->getProgress(), 100);
        if (mode != SELECTION) {
            EXPECT_EQ(in.callsOf(READ_ROW), 2 * 10 * 3 * 2u); // once for the extrema, and once for the copy
        }

        in.forgetCalls();
        this->connect(in, in, {4}, mode);
        this->filter->run();
        if (mode != SELECTION) {
            EXPECT_EQ(in.callsOf(READ_ROW), 10 * 3 * 2u);
            EXPECT_EQ(in.callsOf(WRITE_ROW), 0u);
        }
        EXPECT_TRUE(samePicture(Picture<short>(shape, short(-7)), in));
    }
    HostImage in(Picture<short>(shape, short(3)));
    ImageModelAdapter first(&in, QEL_INT16), second(&in, QEL_INT16);
    this->connect(*first.getImage(), *second.getImage(), {2}, AUTOMATIC);
    in.forgetCalls();
    this->filter->run();
    EXPECT_EQ(in.callsOf(WRITE_ROW), 0u);
}

TYPED_TEST(MedianFilterTest, givesTheOutputWhatTheInputHas)
{
    HostImage in(nearVoxels<unsigned char>(Shape{5, 4, 2}, 1));
    in.setSpacingOf(ROWS, 2.5);
    in.setOriginOf(PLANS, -3);
    in.setInterpretation(QEL_LABEL);
    HostImage out(QEL_FLOAT64, Shape{2, 2});
    this->connect(in, out, {1}, AUTOMATIC);
    this->filter->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 2.5);
    EXPECT_EQ(out.getOriginOf(PLANS), -3);
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TYPED_TEST(MedianFilterTest, refusesWrongInputInTheRulesWords)
{
    EXPECT_QEL_WHAT(this->filter->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", this->name));
    HostImage const in(nearVoxels<float>(Shape{5, 4}, 1));
    this->filter->input = &in;
    EXPECT_QEL_WHAT(this->filter->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", this->name));
    HostImage out;
    this->filter->output = &out;
    this->filter->neighborhoodSize = 0u;
    EXPECT_QEL_WHAT(
        this->filter->run(), RuleException,
        ruleText("The parameter \"neighborhoodSize\" must be strictly positive.", "neighborhoodSize", this->name));
    this->filter->neighborhoodSize = 1u;
    this->filter->neighborhoodShape = 2;
    EXPECT_THROW(this->filter->run(), RuleException);
    this->filter->neighborhoodShape = 0;
    for (int const mode : {0, 4}) {
        this->filter->searchMode = mode;
        EXPECT_THROW(this->filter->run(), RuleException);
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*this->filter));
}

TYPED_TEST(MedianFilterTest, refusesAHistogramOfAllButIntegers)
{
    for (VoxelTypes const type : {QEL_FLOAT32, QEL_FLOAT64, QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64}) {
        HostImage const in(type, Shape{5, 4});
        HostImage out(type, Shape{5, 4});
        this->connect(in, out, {1}, HISTOGRAM);
        EXPECT_QEL_WHAT(this->filter->run(), RuleException,
                        "Rule exception :\n#1 Error : The image data type isn't compatible with Histogram computation "
                        "mode. \n#2 From " +
                            this->name + " \n");
        EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        EXPECT_TRUE(isAtRest(*this->filter));
    }
    // No body takes them.
    HostImage const in(QEL_COMPLEX_FLOAT32, Shape{5, 4});
    HostImage out(QEL_COMPLEX_FLOAT32, Shape{5, 4});
    this->connect(in, out, {1}, AUTOMATIC);
    this->filter->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TYPED_TEST(MedianFilterTest, refusesAHistogramThatNoMemoryHolds)
{
    auto const expectRefusal = [&]<class T>(T low, T high, std::string const& range) {
        Picture<T> picture(Shape{5, 4}, low);
        picture.voxels[7] = high;
        HostImage const in(picture);
        HostImage out(VoxelTypeOf<T>::value, picture.shape);
        this->connect(in, out, {3}, HISTOGRAM);
        EXPECT_QEL_WHAT(
            this->filter->run(), UnexpectedError,
            errorText("The available memory does not hold a histogram of the range " + range + ".", this->name));
        EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
        EXPECT_TRUE(isAtRest(*this->filter));
        for (int const mode : {AUTOMATIC, SELECTION}) {
            this->connect(in, out, {2}, mode);
            this->filter->run();
            EXPECT_TRUE(samePicture(medians(picture, {2, false, this->isVolume}), out));
        }
    };
    expectRefusal(std::numeric_limits<long>::min(), std::numeric_limits<long>::max(), "18446744073709551615");
    expectRefusal(0ul, ~0ul, "18446744073709551615");
    expectRefusal(-1l, 1l << 50, "1125899906842625");
}

TYPED_TEST(MedianFilterTest, countsInHistogramModeWhatTheTablesWouldNot)
{
    // A range above what AUTOMATIC ever counts.
    Picture<unsigned long> picture = nearVoxels<unsigned long>(Shape{9, 8}, 1);
    picture.voxels[30] = 0x1fffff;
    HostImage const in(picture);
    for (int const mode : {HISTOGRAM, AUTOMATIC, SELECTION}) {
        HostImage out;
        this->connect(in, out, {4}, mode);
        this->filter->run();
        EXPECT_TRUE(samePicture(medians(picture, {4, false, this->isVolume}), out));
    }
}

TYPED_TEST(MedianFilterTest, takesTwoStepsWhereARangeIsNeededAndElseOne)
{
    std::vector<double> seen;
    auto const run = [&](ObservedImage& in, int mode) {
        seen.clear();
        HostImage out;
        this->connect(in, out, {1}, mode);
        in.onRead = [&] { seen.push_back(this->filter->getProgress()); };
        withThreads(1, [&] { this->filter->run(); });
        EXPECT_EQ(this->filter->getProgress(), 100);
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
    EXPECT_GT(seen.back(), this->isVolume ? 0 : 40);
    ObservedImage reals(nearVoxels<float>(shape, 1));
    run(reals, AUTOMATIC);
    EXPECT_EQ(seen[0], 0);
}

TYPED_TEST(MedianFilterTest, stopsWhenItIsCancelled)
{
    ObservedImage in(nearVoxels<unsigned char>(Shape{40, 700, 2, 3}, 1));
    HostImage out;
    this->connect(in, out, {1}, AUTOMATIC);
    for (unsigned long const after : {0ul, 4000ul, 4300ul}) {
        out.forgetCalls();
        std::atomic<unsigned long> reads = 0;
        in.onRead = [&] {
            if (++reads > after)
                this->filter->cancelExecution();
        };
        this->filter->run();
        EXPECT_LT(out.callsOf(WRITE_ROW), 4200u);
        EXPECT_LT(this->filter->getProgress(), after == 0 ? 50 : 100);
        EXPECT_TRUE(isAtRest(*this->filter));
    }
    in.onRead = nullptr;
    this->filter->run();
    EXPECT_EQ(this->filter->getProgress(), 100);

    ObservedImage reals(nearVoxels<float>(Shape{40, 700}, 1));
    reals.onRead = [&] { this->filter->cancelExecution(); };
    out.forgetCalls();
    this->connect(reals, out, {2}, AUTOMATIC);
    this->filter->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 700u);

    in.onRead = [&] { this->filter->cancelExecution(); };
    HostImage constant(Picture<int>(Shape{6, 5}, 1));
    this->connect(constant, out, {2}, AUTOMATIC);
    this->filter->run(); // with nothing left of the earlier request
    EXPECT_TRUE(samePicture(Picture<int>(Shape{6, 5}, 1), out));
}

TYPED_TEST(MedianFilterTest, reportsWhatAnImageDoesWrong)
{
    auto const picture = nearVoxels<float>(Shape{40, 25}, 1);
    Picture<float> const expected = medians(picture, {1, false, this->isVolume});
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(QEL_FLOAT32, picture.shape));
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
            algorithm.neighborhoodSize = 1u;
        },
        [&](HostImages const& images) { return bool(samePicture(expected, *images[1])); });
}

TYPED_TEST(MedianFilterTest, raisesTheErrorsOfItsChildren)
{
    HostImage in(nearVoxels<unsigned char>(Shape{8, 6}, 1));
    HostImage out;
    this->connect(in, out, {1}, AUTOMATIC);
    in.failOn(READ_ROW);
    EXPECT_QEL_WHAT(this->filter->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in readRowAt implementation, return value is false \n#2 From "
                    "IntensityExtrema \n#3 From " +
                        this->name + " \n");
    HostImage constant(Picture<int>(Shape{6, 5}, 1));
    this->connect(constant, out, {1}, AUTOMATIC);
    out.failOn(WRITE_ROW);
    EXPECT_QEL_WHAT(
        this->filter->run(), UnexpectedError,
        "Unexpected error :\n#1 Error : Error in writeRowAt implementation, return value is false \n#2 From "
        "CopyImage \n#3 From " +
            this->name + " \n");
    EXPECT_TRUE(isAtRest(*this->filter));
}

TYPED_TEST(MedianFilterTest, runsUnderAHostThatPolls)
{
    auto const picture = nearVoxels<unsigned short>(Shape{60, 40}, 1);
    HostImage const in(picture);
    HostImage out;
    this->connect(in, out, {2}, AUTOMATIC);
    Poller poller;
    this->filter->run(&poller);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_EQ(poller.last, 100);
    EXPECT_TRUE(samePicture(medians(picture, {2, false, this->isVolume}), out));
}

} // namespace
} // namespace qel::test
