#include "Segmentation/private/Texture/CooccurrenceMatrix.h"
#include "Segmentation/tests/TextureModel.h"

#include "Core/tests/Support/Expect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <stdexcept>

namespace qel::test {
namespace {

using namespace segmentation::details;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

CoocIndicatorSet all() { return CoocIndicatorSet().set(); }

CooccurrenceMatrix matrixOf(double min, double max, double binSize, CoocIndicatorSet const& indicators = all(),
                            unsigned long mostPairs = 1000)
{
    CooccurrenceMatrix matrix;
    matrix.init(GreyLevelBins(min, max, binSize), {1, -2, 3}, std::make_shared<CountEntropies>(2 * mostPairs),
                indicators);
    return matrix;
}

void fill(CooccurrenceMatrix& matrix, Levels const& pairs)
{
    for (auto const& [first, second] : pairs)
        matrix.increment(first, second);
}

Levels randomPairs(std::mt19937& random, std::size_t count, double low, double high)
{
    std::uniform_real_distribution<double> level(low, high);
    Levels pairs;
    for (std::size_t k = 0; k < count; ++k) {
        double const first = level(random);
        // Now and then alike, as grey levels of neighbours are.
        pairs.emplace_back(first, random() % 3 == 0 ? first : level(random));
    }
    return pairs;
}

std::string textOfRuntimeError(std::function<void()> const& statement)
{
    try {
        statement();
    } catch (std::runtime_error const& error) {
        return error.what();
    } catch (...) {
        return "something else";
    }
    return "nothing";
}

TEST(CooccurrenceMatrixTest, givesEachMeasureAsItIsDefined)
{
    std::mt19937 random(7301);
    struct Range
    {
        double min, max, binSize;
    };
    for (Range const range : {Range{0, 15, 1}, Range{0, 255, 16}, Range{-40, 90, 7.3}, Range{0, 1, 0.05},
                              Range{1000, 1040, 20}, Range{0, 100, 0.9}, Range{-3, -3, 0.25}, Range{0, 3e6, 1e6}})
        for (std::size_t const count : {1, 2, 7, 81, 400}) {
            Levels const pairs = randomPairs(random, count, range.min - 2, range.max + 2);
            CooccurrenceMatrix matrix = matrixOf(range.min, range.max, range.binSize);
            fill(matrix, pairs);
            PlainCooccurrence plain(range.min, range.max, range.binSize, pairs);
            double const b = range.binSize;
            for (int indicator = angularSecondMoment; indicator < numOfCoocIndicators; ++indicator) {
                double terms = indicator >= sumEntropy ? std::max(1.0, b) : 1;
                if (indicator == sumAverage)
                    terms = 2 * std::abs(range.min) + 1;
                if (indicator == sumVariance)
                    terms = b * b * b * b + 1;
                EXPECT_TRUE(
                    sameMeasure(indicator, matrix.computeIfNotReady(indicator), plain.measure(indicator), terms))
                    << count << " pairs, bins of " << b;
            }
        }
}

TEST(CooccurrenceMatrixTest, isTheSameToTheLastBitWhenItSlidAndWhenItWasFilled)
{
    std::mt19937 random(7302);
    for (double const binSize : {1.0, 0.37, 16.0}) {
        Levels const pairs = randomPairs(random, 600, -5, 30);
        std::size_t const size = 70;
        CooccurrenceMatrix sliding = matrixOf(0, 25, binSize);
        fill(sliding, Levels(pairs.begin(), pairs.begin() + size));
        for (std::size_t begin = 1; begin + size <= pairs.size(); ++begin) {
            sliding.decrement(pairs[begin - 1].first, pairs[begin - 1].second);
            sliding.increment(pairs[begin + size - 1].first, pairs[begin + size - 1].second);
            if (begin % 7 != 0)
                continue;
            CooccurrenceMatrix filled = matrixOf(0, 25, binSize);
            fill(filled,
                 Levels(pairs.begin() + static_cast<long>(begin), pairs.begin() + static_cast<long>(begin + size)));
            for (int indicator = 0; indicator < numOfCoocIndicators; ++indicator)
                ASSERT_EQ(sliding.computeIfNotReady(indicator), filled.computeIfNotReady(indicator)) << indicator;
        }
    }
}

TEST(CooccurrenceMatrixTest, givesTheSameWhateverElseIsChosen)
{
    std::mt19937 random(7303);
    Levels const pairs = randomPairs(random, 150, 0, 40);
    CooccurrenceMatrix whole = matrixOf(0, 40, 1.5);
    fill(whole, pairs);
    for (int indicator = angularSecondMoment; indicator < numOfCoocIndicators; ++indicator) {
        CoocIndicatorSet const chosen = CoocIndicatorSet().set(static_cast<std::size_t>(indicator));
        CooccurrenceMatrix matrix = matrixOf(0, 40, 1.5, chosen);
        fill(matrix, pairs);
        EXPECT_EQ(matrix.computeIfNotReady(indicator), whole.computeIfNotReady(indicator));
        for (int other = angularSecondMoment; other < numOfCoocIndicators; ++other) {
            if (other == indicator)
                continue;
            EXPECT_EQ(textOfRuntimeError([&] { matrix.computeIfNotReady(other); }),
                      "Invalid cooccurrence matrix indicator idx");
        }
    }
}

TEST(CooccurrenceMatrixTest, takesPairsInBinsAsItTakesLevels)
{
    std::mt19937 random(7304);
    Levels const pairs = randomPairs(random, 90, 0, 40);
    CooccurrenceMatrix byLevels = matrixOf(0, 40, 3);
    CooccurrenceMatrix byBins = matrixOf(0, 40, 3);
    fill(byLevels, pairs);
    std::vector<GreyLevelBins::Bin> first, second;
    for (auto const& [a, b] : pairs) {
        first.push_back(byBins.bins().binOf(a));
        second.push_back(byBins.bins().binOf(b));
    }
    byBins.add(first.data(), second.data(), first.size());
    // Either order of a pair is the same.
    byBins.remove(second.data(), first.data(), 30);
    for (int k = 0; k < 30; ++k)
        byLevels.decrement(pairs[static_cast<std::size_t>(k)].first, pairs[static_cast<std::size_t>(k)].second);
    for (int indicator = 0; indicator < numOfCoocIndicators; ++indicator)
        EXPECT_EQ(byLevels.computeIfNotReady(indicator), byBins.computeIfNotReady(indicator)) << indicator;
}

TEST(CooccurrenceMatrixTest, tellsItsDisplacementAndItsPairs)
{
    CooccurrenceMatrix matrix = matrixOf(0, 10, 1);
    EXPECT_EQ(matrix.computeIfNotReady(displacementX), 1);
    EXPECT_EQ(matrix.computeIfNotReady(displacementY), -2);
    EXPECT_EQ(matrix.computeIfNotReady(displacementZ), 3);
    EXPECT_EQ(matrix.computeIfNotReady(numOfPairs), 0);
    fill(matrix, {{1, 2}, {3, 4}, {3, 4}});
    EXPECT_EQ(matrix.computeIfNotReady(numOfPairs), 3);
    matrix.reinit();
    EXPECT_EQ(matrix.computeIfNotReady(numOfPairs), 0);
    for (int const indicator : {-1, 17, 1000})
        EXPECT_EQ(textOfRuntimeError([&] { matrix.computeIfNotReady(indicator); }),
                  "Invalid cooccurrence matrix indicator idx");
}

TEST(CooccurrenceMatrixTest, hasNoSpreadAndNoEntropyWhereOneBinHoldsAll)
{
    for (std::size_t const count : {1, 3, 81, 997})
        for (double const binSize : {1.0, 4.0, 0.5}) {
            CooccurrenceMatrix matrix = matrixOf(0, 50, binSize);
            fill(matrix, Levels(count, {37, 37}));
            double const k = 2 * std::floor(37 / binSize);
            double const log = std::log(binSize) * binSize;
            EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(angularSecondMoment), 1);
            EXPECT_EQ(matrix.computeIfNotReady(contrast), 0);
            EXPECT_EQ(matrix.computeIfNotReady(correlation), 0);
            EXPECT_EQ(matrix.computeIfNotReady(sumOfSquares), 0);
            EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(inverseDifferenceMoment), 1);
            EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(sumAverage), k * binSize * binSize);
            EXPECT_EQ(matrix.computeIfNotReady(sumVariance), 0);
            EXPECT_EQ(matrix.computeIfNotReady(sumEntropy), log);
            EXPECT_EQ(matrix.computeIfNotReady(entropy), log);
            EXPECT_EQ(matrix.computeIfNotReady(differenceVariance), 0);
            EXPECT_EQ(matrix.computeIfNotReady(differenceEntropy), log);
            EXPECT_EQ(matrix.computeIfNotReady(informationMeasuresCorrelation1), 0);
            EXPECT_EQ(matrix.computeIfNotReady(informationMeasuresCorrelation2), 0);
        }
}

TEST(CooccurrenceMatrixTest, isNothingWithoutPairs)
{
    CooccurrenceMatrix matrix = matrixOf(5, 50, 2);
    for (int const indicator :
         {angularSecondMoment, contrast, correlation, sumOfSquares, inverseDifferenceMoment, sumAverage, sumVariance,
          differenceVariance, informationMeasuresCorrelation1, informationMeasuresCorrelation2})
        EXPECT_EQ(matrix.computeIfNotReady(indicator), 0) << indicator;
    for (int const indicator : {sumEntropy, entropy, differenceEntropy})
        EXPECT_EQ(matrix.computeIfNotReady(indicator), std::log(2.0) * 2) << indicator;
}

TEST(CooccurrenceMatrixTest, hasLargeNumbersWithoutOverflow)
{
    // As many bins as there may be, and many pairs in the farthest of them.
    CoocIndicatorSet chosen;
    for (int const indicator : {contrast, correlation, sumOfSquares, sumAverage, sumVariance, differenceVariance})
        chosen.set(static_cast<std::size_t>(indicator));
    unsigned long const count = 300000;
    CooccurrenceMatrix matrix = matrixOf(0, 65535, 1, chosen, count);
    std::vector<GreyLevelBins::Bin> const low(count, 0), high(count, 65535);
    matrix.add(low.data(), high.data(), count);
    matrix.add(high.data(), high.data(), count);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(contrast), 0.5 * 65535.0 * 65535.0);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(sumOfSquares), 0.25 * 0.75 * 65535.0 * 65535.0);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(correlation), -1.0 / 3);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(sumAverage), 1.5 * 65535);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(sumVariance), 0.25 * 65535.0 * 65535.0);
    EXPECT_DOUBLE_EQ(matrix.computeIfNotReady(differenceVariance), 0.25 * 65535.0 * 65535.0);
}

TEST(CooccurrenceMatrixTest, isRefusedWithoutStorage)
{
    char const* const text = "Cooccurrence matrix used but not initialized";
    GreyLevelBins::Bin const bin = 0;
    CooccurrenceMatrix never;
    CooccurrenceMatrix reversed = matrixOf(10, 5, 1);
    for (CooccurrenceMatrix* const matrix : {&never, &reversed}) {
        EXPECT_EQ(textOfRuntimeError([&] { matrix->increment(1, 2); }), text);
        EXPECT_EQ(textOfRuntimeError([&] { matrix->decrement(1, 2); }), text);
        EXPECT_EQ(textOfRuntimeError([&] { matrix->add(&bin, &bin, 1); }), text);
        EXPECT_EQ(textOfRuntimeError([&] { matrix->remove(&bin, &bin, 1); }), text);
        for (int const indicator : {0, 5, 99})
            EXPECT_EQ(textOfRuntimeError([&] { matrix->computeIfNotReady(indicator); }), text);
    }
}

TEST(GreyLevelBinsTest, putLevelsBeyondTheRangeIntoTheFirstAndTheLast)
{
    GreyLevelBins const bins(10, 20, 2);
    EXPECT_EQ(bins.size(), 6u);
    for (auto const& [level, bin] : {std::pair{10.0, 0},
                                     {11.99, 0},
                                     {12.0, 1},
                                     {19.99, 4},
                                     {20.0, 5},
                                     {9.99, 0},
                                     {-infinity, 0},
                                     {infinity, 5},
                                     {nan, 0},
                                     {1e300, 5},
                                     {-1e300, 0},
                                     {20.01, 5}})
        EXPECT_EQ(bins.binOf(level), bin) << level;
    // The last one is that of the maximum, and of no less: it may be far off.
    GreyLevelBins const wide(0, 10, 1.05);
    EXPECT_EQ(wide.size(), 11u);
    EXPECT_EQ(wide.binOf(9.99), 9);
    EXPECT_EQ(wide.binOf(10), 10);
    // Where doubles are coarser than 1, the count lacks the bin of the maximum.
    double const huge = std::ldexp(1.0, 60);
    GreyLevelBins const coarse(0, huge, std::ldexp(1.0, 56));
    EXPECT_EQ(coarse.size(), 16u);
    EXPECT_EQ(coarse.binOf(huge), 15);
    EXPECT_EQ(coarse.binOf(std::nextafter(huge, 0)), 15);
    // Nor need a difference to the minimum stay below that of the maximum.
    GreyLevelBins const rounded(-64, huge, std::ldexp(1.0, 56));
    ASSERT_EQ(rounded.size(), 16u);
    ASSERT_EQ(std::nextafter(huge, 0) + 64, huge);
    EXPECT_EQ(rounded.binOf(std::nextafter(huge, 0)), 15);
    EXPECT_EQ(GreyLevelBins(5, 5, 100).size(), 1u);
    EXPECT_EQ(GreyLevelBins(5, 5, 100).binOf(5), 0);
    EXPECT_EQ(GreyLevelBins(5, 5, 0.25).size(), 4u);
    EXPECT_EQ(GreyLevelBins(0, 1e-300, infinity).size(), 1u);
}

TEST(GreyLevelBinsTest, refuseWhatCannotBeCut)
{
    for (double const binSize : {0.0, -1.0, nan})
        EXPECT_QEL_THROW(GreyLevelBins(0, 10, binSize), InvalidCall, "The bin size must be greater than 0.");
    // A range that is the wrong way round has no bins, whatever their size.
    EXPECT_EQ(GreyLevelBins(10, 0, 0).size(), 0u);
    EXPECT_EQ(GreyLevelBins(0, 65535, 1).size(), 65536u);
    EXPECT_QEL_THROW(GreyLevelBins(0, 65536, 1), MemoryError,
                     "A cooccurrence matrix has 65536 bins at most. The grey levels from 0 to 65536 make 65537.");
    EXPECT_QEL_THROW(GreyLevelBins(0, infinity, 1), InvalidCall,
                     "The grey levels from 0 to inf cannot be put into bins.");
    EXPECT_QEL_THROW(GreyLevelBins(nan, 1, 1), InvalidCall, "The grey levels from nan to 1 cannot be put into bins.");
}

TEST(CountEntropiesTest, areThoseOfDoubles)
{
    for (unsigned long const largest : {1ul, 2ul, 162ul, 100000ul}) {
        CountEntropies const entropies(largest);
        EXPECT_EQ(entropies.largest(), largest);
        EXPECT_EQ(entropies[0], 0);
        EXPECT_EQ(entropies[1], 0);
        double const unit = entropies.unit();
        for (unsigned long n = 2; n <= largest; n += 1 + n / 7) {
            double const expected = static_cast<double>(n) * std::log(static_cast<double>(n));
            EXPECT_NEAR(static_cast<double>(entropies[n]) * unit, expected, unit + 1e-15 * expected);
        }
        EXPECT_NEAR(static_cast<double>(entropies.logOfTwo()) * unit, std::log(2.0), unit);
        EXPECT_LT(unit, 1e-12 * static_cast<double>(largest));
        // Sums of as many counts as there are have room.
        EXPECT_LT(entropies[largest], std::numeric_limits<std::int64_t>::max() / 2);
    }
}

} // namespace
} // namespace qel::test
