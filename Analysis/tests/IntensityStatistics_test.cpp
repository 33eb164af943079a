#include <qel/analysis/IntensityStatistics.h>

#include "Analysis/private/IntensityStatisticsScalarGeneric.h"
#include "Core/tests/Support/Algorithms.h"

#include <bit>
#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using analysis::IntensityStatistics;

/// Sums in the widest floating type; `terms` and `squareTerms` are sums of magnitudes, for the error that is allowed.
template <class T> struct Statistics
{
    explicit Statistics(Picture<T> const& picture)
        : count(picture.voxels.size())
    {
        for (T const voxel : picture.voxels) {
            if (voxel < minimum)
                minimum = voxel;
            if (voxel > maximum)
                maximum = voxel;
            long double const value = voxel;
            sum += value;
            terms += std::fabs(value);
            squares += value * value;
        }
    }

    T minimum = std::numeric_limits<T>::max();
    T maximum = std::numeric_limits<T>::lowest();
    unsigned long count;
    long double sum = 0;
    long double terms = 0;
    long double squares = 0;
};

class IntensityStatisticsTest : public testing::Test
{
protected:
    void runOn(ImageModel const& image)
    {
        forceLevel(*statistics, SCALAR);
        statistics->input = &image;
        statistics->run();
    }
    template <class T> void runOn(Picture<T> const& picture) { runOn(HostImage(picture)); }

    double minimum() const { return statistics->outputMinimum.get().asDouble(); }
    double maximum() const { return statistics->outputMaximum.get().asDouble(); }
    double mean() const { return statistics->outputMean.get().getRealValue(); }
    double sum() const { return statistics->outputSumOfIntensityValues.get().getRealValue(); }
    double squares() const { return statistics->outputSumOfSquaredIntensityValues.get().getRealValue(); }
    double deviation() const { return statistics->outputStandardDeviation.get().getRealValue(); }

    std::vector<unsigned long> bits() const
    {
        std::vector<unsigned long> all;
        for (double const value : {minimum(), maximum(), mean(), sum(), squares(), deviation()})
            all.push_back(std::bit_cast<unsigned long>(value));
        return all;
    }

    /// Of a picture whose sums are exact in a double.
    template <class T> void expectExactly(Picture<T> const& picture)
    {
        Statistics<T> const expected(picture);
        EXPECT_EQ(statistics->outputMinimum.get(), Scalar(expected.minimum));
        EXPECT_EQ(statistics->outputMaximum.get(), Scalar(expected.maximum));
        double const total = static_cast<double>(expected.sum);
        double const totalOfSquares = static_cast<double>(expected.squares);
        double const voxels = static_cast<double>(expected.count);
        EXPECT_EQ(sum(), total);
        EXPECT_EQ(squares(), totalOfSquares);
        EXPECT_TRUE(sameValue(mean(), total / voxels));
        double const average = total / voxels;
        EXPECT_TRUE(sameValue(deviation(), std::sqrt(totalOfSquares / voxels - average * average)));
    }

    Ref<IntensityStatistics> statistics = IntensityStatistics::New();
};

TEST_F(IntensityStatisticsTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(IntensityStatistics::getClassInfo()->getName(), String("IntensityStatistics"));
    EXPECT_EQ(IntensityStatistics::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("IntensityStatistics"), IntensityStatistics::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("IntensityStatistics")->createInstance();
    EXPECT_NE(dynamic_cast<IntensityStatistics*>(other.get()), nullptr);
}

TEST_F(IntensityStatisticsTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*statistics), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(
        describedOutputs(*statistics),
        std::vector<std::string>({"scalar of kind 0 outputMinimum = 0", "scalar of kind 0 outputMaximum = 0",
                                  "scalar of kind 0 outputMean = 0", "scalar of kind 0 outputSumOfIntensityValues = 0",
                                  "scalar of kind 0 outputSumOfSquaredIntensityValues = 0",
                                  "scalar of kind 0 outputStandardDeviation = 0"}));
    EXPECT_TRUE(hasNoBorder(*statistics));
    EXPECT_EQ(levelsOf(*statistics), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(IntensityStatisticsTest, measuresEveryTypeAndShapeExactlyWhereSumsAreExact)
{
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes()) {
                T const low = std::is_signed_v<T> ? T(-100) : T(0);
                T const high = std::is_signed_v<T> ? T(127) : T(255);
                auto const picture = randomPictureBetween<T>(shape, seed++, low, high);
                runOn(picture);
                SCOPED_TRACE(testing::Message() << shape);
                expectExactly(picture);
            }
        });
    });
}

TEST_F(IntensityStatisticsTest, sumsTheEndsOfNarrowTypesExactly)
{
    auto const check = [&]<class T>(T value) {
        Picture<T> picture(Shape{40000, 7}, value);
        picture.voxels[3] = T(value / 2);
        runOn(picture);
        expectExactly(picture);
    };
    check((unsigned char)255);
    check((signed char)-128);
    check((signed char)127);
    check((unsigned short)65535);
    check((short)-32768);
    check((short)32767);
}

TEST_F(IntensityStatisticsTest, findsExtremaInWhicheverBlockTheyAre)
{
    onOneAndFourThreads([&] {
        for (Shape const& shape : {Shape{8193, 65}, Shape{16400, 3, 17}, Shape{40, 129, 33}})
            for (bool const isLowFirst : {true, false}) {
                Picture<int> picture = randomPictureBetween<int>(shape, 3, -5, 5);
                picture.voxels.front() = isLowFirst ? -6 : 6;
                picture.voxels.back() = -picture.voxels.front();
                runOn(picture);
                expectExactly(picture);
            }
    });
}

TEST_F(IntensityStatisticsTest, sumsRowsOfAnyLengthExactly)
{
    // Longer than any block: what is added up in narrow totals must not depend on how blocks are cut.
    auto const check = [](auto value) {
        std::vector<decltype(value)> const row(100'001, value);
        double sum = 0, squares = 0;
        analysis::addRow(row.data(), row.size(), sum, squares);
        EXPECT_EQ(sum, 100'001.0 * value);
        EXPECT_EQ(squares, 100'001.0 * value * value);
    };
    check((unsigned char)255);
    check((signed char)-128);
    check((unsigned short)65535);
    check((short)-32768);
    check(-65537);
}

TEST_F(IntensityStatisticsTest, sumsEveryTypeCloselyWhereSumsRound)
{
    forEachVoxelType([&]<class T>() {
        for (Shape const& shape : {Shape{33, 5, 3, 2}, Shape{1025, 11}, Shape{8200, 70}}) {
            Picture<T> picture = randomPicture<T>(shape, 11);
            if constexpr (std::is_floating_point_v<T>)
                for (T& voxel : picture.voxels)
                    if (std::fabs(voxel) > T(1e20))
                        voxel = T(0.3);
            runOn(picture);
            Statistics<T> const expected(picture);
            double const tolerance = 1e-12;
            EXPECT_EQ(statistics->outputMinimum.get(), Scalar(expected.minimum));
            EXPECT_EQ(statistics->outputMaximum.get(), Scalar(expected.maximum));
            EXPECT_NEAR(sum(), static_cast<double>(expected.sum), static_cast<double>(expected.terms) * tolerance);
            EXPECT_NEAR(squares(), static_cast<double>(expected.squares),
                        static_cast<double>(expected.squares) * tolerance);
            // From the two sums, by the one-pass formula.
            double const voxels = static_cast<double>(expected.count);
            EXPECT_EQ(mean(), sum() / voxels);
            EXPECT_TRUE(sameValue(deviation(), std::sqrt(squares() / voxels - mean() * mean())));
        }
    });
}

TEST_F(IntensityStatisticsTest, givesTheSameBitsForEveryNumberOfThreadsAndRun)
{
    auto const check = [&]<class T>(Picture<T> const& picture) {
        HostImage const image(picture);
        std::vector<unsigned long> first;
        for (int const threads : {1, 2, 4, 3, 1, 4, 4, 2})
            withThreads(threads, [&] {
                runOn(image);
                if (first.empty())
                    first = bits();
                EXPECT_EQ(bits(), first) << threads << " threads";
            });
        Poller poller;
        statistics->run(&poller);
        EXPECT_EQ(bits(), first) << "polled";
        EXPECT_EQ(poller.last, 100);
        EXPECT_TRUE(poller.isSteady);
    };
    for (Shape const& shape : {Shape{1025, 300, 3}, Shape{8193, 65}, Shape{20, 70, 40, 3, 2}}) {
        Picture<double> reals = randomPicture<double>(shape, 1);
        for (double& voxel : reals.voxels)
            if (std::fabs(voxel) > 1e30)
                voxel = 1e-7;
        check(reals);
        check(randomPictureBetween<float>(shape, 2, -1000.f, 1000.f));
        check(randomPicture<unsigned long>(shape, 3));
        check(randomPicture<int>(shape, 4));
    }
}

TEST_F(IntensityStatisticsTest, measuresAConstantImage)
{
    forEachVoxelType([&]<class T>() {
        runOn(Picture<T>(Shape{67, 13, 2}, T(9)));
        EXPECT_EQ(minimum(), 9);
        EXPECT_EQ(maximum(), 9);
        EXPECT_EQ(mean(), 9);
        EXPECT_EQ(sum(), 9.0 * 67 * 13 * 2);
        EXPECT_EQ(squares(), 81.0 * 67 * 13 * 2);
        EXPECT_EQ(deviation(), 0);
    });
    runOn(Picture<double>(Shape{67, 13}, 1e9 + 0.1));
    EXPECT_EQ(minimum(), maximum());
    EXPECT_TRUE(std::isnan(deviation()) || std::fabs(deviation()) < 100);
}

TEST_F(IntensityStatisticsTest, givesTheDeviationOfThePopulation)
{
    runOn(Picture<unsigned char>(Shape{8}, {2, 4, 4, 4, 5, 5, 7, 9}));
    EXPECT_EQ(minimum(), 2);
    EXPECT_EQ(maximum(), 9);
    EXPECT_EQ(mean(), 5);
    EXPECT_EQ(sum(), 40);
    EXPECT_EQ(squares(), 232);
    EXPECT_EQ(deviation(), 2);
}

TEST_F(IntensityStatisticsTest, givesOneResultForAllSeries)
{
    Picture<short> picture(Shape{5, 4, 1, 3, 2}, 10);
    picture.at(0, 0, 0, 0, 0) = -300;
    picture.at(4, 3, 0, 2, 1) = 400;
    runOn(picture);
    expectExactly(picture);
    EXPECT_EQ(minimum(), -300);
    EXPECT_EQ(maximum(), 400);
    EXPECT_EQ(sum(), 10 * 118 + 100);
}

TEST_F(IntensityStatisticsTest, hasNoMeanOfAnEmptyImage)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 3, 0}, Shape{3, 3, 1, 0}, Shape{3, 3, 1, 1, 0}})
        forEachVoxelType([&]<class T>() {
            runOn(Picture<T>(shape));
            EXPECT_EQ(statistics->outputMinimum.get(), Scalar(std::numeric_limits<T>::max()));
            EXPECT_EQ(statistics->outputMaximum.get(), Scalar(std::numeric_limits<T>::lowest()));
            EXPECT_EQ(sum(), 0);
            EXPECT_EQ(squares(), 0);
            EXPECT_TRUE(std::isnan(mean()));
            EXPECT_TRUE(std::isnan(deviation()));
        });
}

TEST_F(IntensityStatisticsTest, takesWhatIsNoNumberIntoItsSumsAlone)
{
    float const nan = std::nanf("");
    runOn(Picture<float>(Shape{4}, {3, nan, -2, 5}));
    EXPECT_EQ(minimum(), -2);
    EXPECT_EQ(maximum(), 5);
    for (double const value : {mean(), sum(), squares(), deviation()})
        EXPECT_TRUE(std::isnan(value));

    runOn(Picture<double>(Shape{3}, {1, INFINITY, 2}));
    EXPECT_EQ(minimum(), 1);
    EXPECT_EQ(maximum(), INFINITY);
    EXPECT_EQ(sum(), INFINITY);
    EXPECT_EQ(mean(), INFINITY);
    EXPECT_TRUE(std::isnan(deviation()));

    // Nothing is less than the largest number but what is no infinity.
    runOn(Picture<float>(Shape{40}, INFINITY));
    EXPECT_EQ(minimum(), std::numeric_limits<float>::max());
    EXPECT_EQ(maximum(), INFINITY);
}

TEST_F(IntensityStatisticsTest, givesANotANumberWhereRoundingMakesTheVarianceNegative)
{
    bool found = false;
    for (unsigned seed = 0; seed < 200 && !found; ++seed) {
        Picture<double> const picture(Shape{7}, 1e8 + 0.1 * seed);
        runOn(picture);
        double const variance = squares() / 7 - mean() * mean();
        EXPECT_EQ(std::isnan(deviation()), variance < 0);
        found = variance < 0;
    }
    EXPECT_TRUE(found);
}

TEST_F(IntensityStatisticsTest, sumsSquaresOfWideIntegersInDoubles)
{
    Picture<unsigned long> const picture(Shape{3}, {18446744073709551615ul, 1, 9007199254740993ul});
    runOn(picture);
    EXPECT_EQ(statistics->outputMaximum.get(), Scalar(18446744073709551615ul));
    EXPECT_EQ(sum(), 18446744073709551616.0 + 1 + 9007199254740992.0);
    EXPECT_NEAR(squares() / 3.4028236692093846e38, 1, 1e-6);
}

TEST_F(IntensityStatisticsTest, keepsTheKindOfTheVoxelsInItsExtrema)
{
    forEachVoxelType([&]<class T>() {
        runOn(Picture<T>(Shape{3}, T(1)));
        ScalarType const kind = std::is_floating_point_v<T> ? REAL : std::is_signed_v<T> ? INTEGER : UNSIGNED_INTEGER;
        EXPECT_EQ(statistics->outputMinimum.get().getType(), kind);
        EXPECT_EQ(statistics->outputMaximum.get().getType(), kind);
        EXPECT_EQ(statistics->outputMean.get().getType(), REAL);
        EXPECT_EQ(statistics->outputSumOfIntensityValues.get().getType(), REAL);
        EXPECT_EQ(statistics->outputSumOfSquaredIntensityValues.get().getType(), REAL);
        EXPECT_EQ(statistics->outputStandardDeviation.get().getType(), REAL);
    });
}

TEST_F(IntensityStatisticsTest, doesNothingWithVoxelsThatItDoesNotKnow)
{
    HostImage const complex(QEL_COMPLEX_FLOAT64, {3});
    statistics->outputMean = Scalar(42);
    runOn(complex);
    EXPECT_EQ(statistics->outputMean.get(), Scalar(42));
}

TEST_F(IntensityStatisticsTest, refusesAMissingImage)
{
    EXPECT_QEL_WHAT(statistics->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "IntensityStatistics"));
    EXPECT_TRUE(isAtRest(*statistics));
}

TEST_F(IntensityStatisticsTest, reportsAnImageThatFailsDuringTheRun)
{
    IntensityStatistics* connected = nullptr;
    expectFailingImagesAreReported<IntensityStatistics>(
        [&](IntensityStatistics& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(Picture<short>(Shape{2, 2}, {5, 6, -7, 8})));
            algorithm.input = images[0].get();
            algorithm.outputMean = Scalar();
            connected = &algorithm;
        },
        [&](HostImages const&) { return connected->outputMean.get() == Scalar(3.0); });
}

TEST_F(IntensityStatisticsTest, stopsBetweenBlocksWhenCancelled)
{
    ObservedImage image(Picture<short>(Shape{2, 640, 64, 2}, 3));
    statistics->input = &image;
    withThreads(1, [&] {
        image.onRead = [&] { statistics->cancelExecution(); };
        statistics->run();
        EXPECT_LT(image.callsOf(READ_ROW), 640u * 64);
        // What was seen is in the sums; what comes after the last block is not done.
        EXPECT_GT(sum(), 0);
        EXPECT_LT(sum(), 3.0 * 2 * 640 * 64);
        EXPECT_EQ(mean(), 0);
        EXPECT_EQ(deviation(), 0);
        EXPECT_TRUE(isAtRest(*statistics));
        image.onRead = nullptr;
        statistics->run();
        EXPECT_EQ(mean(), 3);
        EXPECT_EQ(statistics->getProgress(), 100);
    });
}

} // namespace
} // namespace qel::test
