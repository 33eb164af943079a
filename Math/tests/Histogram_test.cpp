#include "Math/private/Histogram.h"

#include "Core/tests/Support/Expect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace qel::test {
namespace {

using math::Histogram;

constexpr char const* noBins = "The histogram isn't correctly initialized.";
constexpr char const* noValues = "The histogram is empty: impossible to compute a measure.";
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Histogram filled(double min, double max, double binSize, std::vector<double> const& values)
{
    Histogram histogram(min, max, binSize);
    for (double const value : values)
        histogram.increment(value);
    return histogram;
}

/// The measures, each from a table of counts and the formula as it is written.
struct PlainHistogram
{
    double min;
    double max;
    double width;
    std::vector<unsigned long> counts;

    long double centre(std::size_t i) const { return min + (static_cast<long double>(i) + 0.5L) * width; }
    void add(double value)
    {
        if (value < min || value > max)
            return;
        ++counts[std::min(counts.size() - 1, static_cast<std::size_t>((value - min) / width))];
    }
    unsigned long total() const
    {
        unsigned long sum = 0;
        for (unsigned long const count : counts)
            sum += count;
        return sum;
    }
    long double moment(int power, long double around) const
    {
        long double sum = 0;
        for (std::size_t i = 0; i < counts.size(); ++i)
            sum += counts[i] * std::pow(centre(i) - around, power);
        return sum / total();
    }
    long double mean() const { return moment(1, 0); }
    long double variance() const { return moment(2, mean()); }
    long double skewness() const { return moment(3, mean()) / std::pow(variance(), 1.5L); }
    long double kurtosis() const { return moment(4, mean()) / (variance() * variance()) - 3; }
    long double peak() const
    {
        std::size_t best = 0;
        for (std::size_t i = 1; i < counts.size(); ++i)
            if (counts[i] > counts[best])
                best = i;
        return centre(best);
    }
    long double quantile(double ratio) const
    {
        std::vector<unsigned long> q;
        unsigned long below = 0;
        for (unsigned long const count : counts) {
            q.push_back(below + count / 2);
            below += count;
        }
        double const t = static_cast<double>(total()) * ratio;
        for (std::size_t i = 0; i < q.size(); ++i) {
            if (!(t < static_cast<double>(q[i])))
                continue;
            std::size_t j = i;
            while (j > 0 && q[j - 1] == q[i])
                --j;
            if (j == 0)
                return centre(i);
            long double const w = (static_cast<long double>(q[i]) - t) / (static_cast<long double>(q[i]) - q[j - 1]);
            return centre(j - 1) * w + centre(i) * (1 - w);
        }
        return centre(q.size() - 1);
    }
};

void expectNear(double found, long double expected, double tolerance = 1e-11)
{
    EXPECT_NEAR(found, static_cast<double>(expected),
                tolerance * std::max(1.0, std::abs(static_cast<double>(expected))));
}

void expectSameMeasures(Histogram& histogram, PlainHistogram const& plain)
{
    expectNear(histogram.computeMean(), plain.mean());
    expectNear(histogram.computeVariance(), plain.variance(), 1e-9);
    expectNear(histogram.computeStddev(), std::sqrt(plain.variance()), 1e-9);
    expectNear(histogram.computeSkewness(), plain.skewness(), 1e-9);
    expectNear(histogram.computeKurtosis(), plain.kurtosis(), 1e-9);
    expectNear(histogram.computePeak(), plain.peak());
    for (double const ratio : {-1.0, 0.0, 0.001, 0.1, 0.25, 0.5, 0.75, 0.9, 0.999, 1.0, 2.0, nan})
        expectNear(histogram.computeQuantile(ratio), plain.quantile(ratio));
}

TEST(HistogramTest, refusesEverythingWithoutBins)
{
    for (Histogram histogram : {Histogram(), Histogram(0.0, 10.0, 0ul), Histogram(0.0, 10.0, 0.0),
                                Histogram(0.0, 10.0, -1.0), Histogram(0.0, 10.0, 2e-308), Histogram(0.0, 10.0, nan),
                                Histogram(0.0, nan, 1.0), Histogram(-infinity, infinity, 1.0)}) {
        EXPECT_QEL_THROW(histogram.increment(5), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.increment(50), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.decrement(5), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.getClassStart(0), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.getClassMean(0), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.getClassEnd(0), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeStddev(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeVariance(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeSkewness(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeKurtosis(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computePeak(), InvalidCall, noBins);
        EXPECT_QEL_THROW(histogram.computeQuantile(0.5), InvalidCall, noBins);
        histogram.reset();
        EXPECT_QEL_THROW(histogram.increment(5), InvalidCall, noBins);
    }
}

TEST(HistogramTest, refusesMeasuresWithoutValues)
{
    Histogram histogram(0.0, 10.0, 1.0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computeStddev(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computeVariance(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computeSkewness(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computeKurtosis(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computePeak(), InvalidCall, noValues);
        EXPECT_QEL_THROW(histogram.computeQuantile(0.5), InvalidCall, noValues);
        // As well when it had one, whose measures were kept.
        histogram.increment(3);
        EXPECT_EQ(histogram.computeMean(), 3.5);
        histogram.decrement(3);
    }
    histogram.increment(-1);
    EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noValues);
}

TEST(HistogramTest, hasEqualBinsByTheirNumber)
{
    Histogram histogram(10.0, 2.0, 4ul);
    for (unsigned long i = 0; i < 4; ++i) {
        EXPECT_EQ(histogram.getClassStart(i), 2.0 + 2.0 * i);
        EXPECT_EQ(histogram.getClassMean(i), 3.0 + 2.0 * i);
        EXPECT_EQ(histogram.getClassEnd(i), 4.0 + 2.0 * i);
    }
    char const* const beyond = "The class index must be less than the number of classes4";
    EXPECT_QEL_THROW(histogram.getClassStart(4), BadIndex, beyond);
    EXPECT_QEL_THROW(histogram.getClassMean(4), BadIndex, beyond);
    EXPECT_QEL_THROW(histogram.getClassEnd(~0ul), BadIndex, beyond);
}

TEST(HistogramTest, hasBinsOfAWidth)
{
    auto const numOfBins = [](Histogram const& histogram) {
        for (unsigned long i = 0;; ++i) {
            try {
                histogram.getClassStart(i);
            } catch (BadIndex const&) {
                return i;
            }
        }
    };
    Histogram const exact(0.0, 10.0, 2.0);
    EXPECT_EQ(numOfBins(exact), 6u);
    EXPECT_EQ(exact.getClassEnd(4), 10.0);
    // The last one begins at the maximum, and ends there.
    EXPECT_EQ(exact.getClassStart(5), 10.0);
    EXPECT_EQ(exact.getClassEnd(5), 10.0);

    EXPECT_EQ(numOfBins(Histogram(0.0, 10.9, 2.0)), 6u);
    EXPECT_EQ(numOfBins(Histogram(0.0, 11.0, 2.0)), 7u);
    EXPECT_EQ(numOfBins(Histogram(10.0, 0.0, 2.0)), 6u);
    EXPECT_EQ(numOfBins(Histogram(5.0, 5.0, 2.0)), 1u);
    // The first bin begins at the minimum whatever its width.
    EXPECT_EQ(Histogram(5.0, 7.0, infinity).getClassStart(0), 5.0);
}

TEST(HistogramTest, countsTheMaximumInTheLastBin)
{
    Histogram byNumber(0.0, 10.0, 5ul);
    byNumber.increment(10);
    EXPECT_EQ(byNumber.computePeak(), 9.0);
    Histogram byWidth(0.0, 9.0, 2.0);
    byWidth.increment(9);
    EXPECT_EQ(byWidth.computePeak(), byWidth.getClassMean(4));
    // Bins of no width.
    Histogram ofOneValue(3.0, 3.0, 5ul);
    ofOneValue.increment(3);
    EXPECT_EQ(ofOneValue.computeMean(), 3.0);
    ofOneValue.decrement(3);
    EXPECT_QEL_THROW(ofOneValue.computeMean(), InvalidCall, noValues);
}

TEST(HistogramTest, passesOverValuesOutsideOfTheRangeAndNan)
{
    Histogram histogram = filled(0, 10, 1, {2, 4, 4});
    double const mean = histogram.computeMean();
    for (double const value : {-0.001, 10.001, -infinity, infinity, nan}) {
        histogram.increment(value);
        EXPECT_EQ(histogram.computeMean(), mean);
        histogram.decrement(value);
        EXPECT_EQ(histogram.computeMean(), mean);
    }
    // Also where it is empty: nothing of them is removed.
    Histogram empty(0.0, 10.0, 1.0);
    empty.decrement(11);
    EXPECT_QEL_THROW(empty.decrement(10), InvalidCall, "The histogram is empty: impossible to decrement an intensity.");
}

TEST(HistogramTest, forgetsMeasuresWithEachChange)
{
    Histogram histogram = filled(0, 10, 1, {2});
    EXPECT_EQ(histogram.computeMean(), 2.5);
    EXPECT_EQ(histogram.computePeak(), 2.5);
    histogram.increment(8);
    EXPECT_EQ(histogram.computeMean(), 5.5);
    histogram.increment(8);
    EXPECT_EQ(histogram.computePeak(), 8.5);
    histogram.decrement(2);
    EXPECT_EQ(histogram.computeMean(), 8.5);
    histogram.resetMeasures();
    EXPECT_EQ(histogram.computeMean(), 8.5);
    histogram.reset();
    EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noValues);
    histogram.increment(1);
    EXPECT_EQ(histogram.computeMean(), 1.5);
    histogram.reset(0.0, 100.0, 10.0);
    EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noValues);
    histogram.increment(1);
    EXPECT_EQ(histogram.computeMean(), 5.0);
    histogram.reset(0.0, 100.0, 2ul);
    histogram.increment(1);
    EXPECT_EQ(histogram.computeMean(), 25.0);
    histogram.reset(0.0, 100.0, 0ul);
    EXPECT_QEL_THROW(histogram.computeMean(), InvalidCall, noBins);
}

TEST(HistogramTest, measuresRandomValuesAsTheFormulasSay)
{
    std::mt19937 random(7404);
    for (int round = 0; round < 40; ++round) {
        double const width = std::uniform_real_distribution<double>(0.3, 3)(random);
        PlainHistogram plain{-20, 35, width, std::vector<unsigned long>(static_cast<std::size_t>(55 / width + 1.5))};
        Histogram histogram(-20.0, 35.0, width);
        std::normal_distribution<double> values(round % 10, 1 + round % 7);
        for (int i = 0; i < 3 + 20 * round; ++i) {
            double const value = values(random);
            histogram.increment(value);
            plain.add(value);
        }
        expectSameMeasures(histogram, plain);
    }
}

TEST(HistogramTest, isTheSameAfterValuesCameAndWent)
{
    std::mt19937 random(7405);
    std::uniform_real_distribution<double> values(-2, 12);
    std::vector<double> window;
    Histogram sliding(0.0, 10.0, 0.7);
    for (int i = 0; i < 300; ++i) {
        window.push_back(values(random));
        sliding.increment(window.back());
        if (window.size() > 40) {
            sliding.decrement(window.front());
            window.erase(window.begin());
        }
        if (i < 10)
            continue;
        Histogram fresh = filled(0, 10, 0.7, window);
        EXPECT_EQ(sliding.computeMean(), fresh.computeMean());
        EXPECT_EQ(sliding.computeKurtosis(), fresh.computeKurtosis());
        EXPECT_EQ(sliding.computeQuantile(0.3), fresh.computeQuantile(0.3));
    }
}

TEST(HistogramTest, hasNoSpreadWithASingleValue)
{
    Histogram histogram = filled(0, 10, 1, {3});
    EXPECT_EQ(histogram.computeVariance(), 0.0);
    EXPECT_EQ(histogram.computeStddev(), 0.0);
    EXPECT_EQ(histogram.computeSkewness(), 0.0);
    EXPECT_EQ(histogram.computeKurtosis(), 0.0);
    // Rounding leaves a variance of either sign; its root is never NaN.
    for (int i = 0; i < 200; ++i) {
        Histogram uneven = filled(0, 1000, 0.1 + i * 0.013, {i * 4.9, i * 4.9, i * 4.9});
        EXPECT_NEAR(uneven.computeVariance(), 0, 1e-9);
        EXPECT_EQ(uneven.computeStddev(), uneven.computeVariance() > 0 ? std::sqrt(uneven.computeVariance()) : 0.0);
    }
}

TEST(HistogramTest, hasItsPeakInTheLowerOfEqualBins)
{
    EXPECT_EQ(filled(0, 10, 1, {7, 3, 3, 7}).computePeak(), 3.5);
    EXPECT_EQ(filled(0, 10, 1, {7, 3, 3, 7, 7}).computePeak(), 7.5);
}

TEST(HistogramTest, findsQuantilesBetweenCentres)
{
    // Four values a bin: 2 of them lie below the middle of the bin at 2, 4 below the empty ones, 6 below that at 6.
    Histogram two = filled(0, 9, 1, {2, 2, 2, 2, 6, 6, 6, 6});
    EXPECT_EQ(two.computeQuantile(1.0 / 8), 2.0);
    EXPECT_EQ(two.computeQuantile(2.0 / 8), 2.5);
    EXPECT_EQ(two.computeQuantile(3.0 / 8), 3.0);
    EXPECT_EQ(two.computeQuantile(4.0 / 8), 5.5);
    EXPECT_EQ(two.computeQuantile(5.0 / 8), 6.0);
    EXPECT_EQ(two.computeQuantile(6.0 / 8), 6.5);
    EXPECT_EQ(two.computeQuantile(1), 9.5);

    // A first bin of one value has its middle at 0, where a ratio of 0 is not below.
    Histogram one = filled(0, 9, 1, {0, 0, 5, 5});
    EXPECT_EQ(one.computeQuantile(0), 0.5);
    EXPECT_EQ(one.computeQuantile(-1), 0.5);
    EXPECT_EQ(filled(0, 9, 1, {3}).computeQuantile(0), 3.5);
    EXPECT_EQ(filled(0, 9, 1, {3}).computeQuantile(-1), 0.5);
}

TEST(HistogramTest, wrapsABinThatHadNothingToRemove)
{
    Histogram histogram = filled(0, 10, 1, {3, 3});
    histogram.decrement(7);
    EXPECT_EQ(histogram.computePeak(), 7.5);
    histogram.increment(7);
    EXPECT_EQ(histogram.computePeak(), 3.5);
    EXPECT_EQ(histogram.computeMean(), 3.5);
}

} // namespace
} // namespace qel::test
