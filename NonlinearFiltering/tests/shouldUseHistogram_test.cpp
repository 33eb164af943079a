#include "NonlinearFiltering/private/MedianFilter/shouldUseHistogram.h"

#include <gtest/gtest.h>

#include <vector>

namespace qel::test {
namespace {

using nonlinear_filtering::shouldUse2DHistogram;
using nonlinear_filtering::shouldUse3DHistogram;

/// The least range for which a selection is chosen.
template <class ShouldUse> unsigned limitOf(ShouldUse const& shouldUse, unsigned size, bool isFirstShape)
{
    unsigned low = 0; // a histogram
    unsigned high = 0xffffffff;
    if (!shouldUse(size, low, isFirstShape))
        return 0;
    while (high - low > 1) {
        unsigned const middle = low + (high - low) / 2;
        (shouldUse(size, middle, isFirstShape) ? low : high) = middle;
    }
    return high;
}

TEST(ShouldUseHistogramTest, hasItsMeasuredLimits)
{
    std::vector<unsigned> const square = {60,    300,   600,   1300,  1600,  2345,  3100,  3600,
                                          4700,  5700,  7300,  8400,  10200, 11600, 14400, 16200,
                                          18500, 22100, 24800, 27900, 31000, 34500, 37700};
    std::vector<unsigned> const disk = {14,   85,    620,   1200,  1770,  2250,  2900,  3400,  4150,  4900,  5500, 6400,
                                        7900, 11000, 11200, 13000, 14200, 15200, 19200, 20500, 22200, 26100, 28000};
    std::vector<unsigned> const cube = {415,   2100,  3600,  6000,  10000, 13400, 15000, 24200, 33000,
                                        43700, 54500, 65800, 75600, 72000, 90000, 74000, 75600, 76300};
    std::vector<unsigned> const ball = {47,    530,   2100,  3100,  5000,  7500,  10000, 15000, 18200,
                                        22500, 27000, 34700, 44300, 52400, 61700, 69300, 69500, 75700};
    for (unsigned size = 1; size <= square.size(); ++size) {
        EXPECT_EQ(limitOf(shouldUse2DHistogram, size, true), square[size - 1]);
        EXPECT_EQ(limitOf(shouldUse2DHistogram, size, false), disk[size - 1]);
    }
    for (unsigned size = 1; size <= cube.size(); ++size) {
        EXPECT_EQ(limitOf(shouldUse3DHistogram, size, true), cube[size - 1]);
        EXPECT_EQ(limitOf(shouldUse3DHistogram, size, false), ball[size - 1]);
    }
    EXPECT_FALSE(shouldUse2DHistogram(1, 70000, true));
    EXPECT_FALSE(shouldUse2DHistogram(1, 60, true));
    EXPECT_TRUE(shouldUse2DHistogram(1, 59, true));
}

TEST(ShouldUseHistogramTest, goesOnBehindTheLastLimitFromTheNumberOfLimits)
{
    EXPECT_EQ(limitOf(shouldUse2DHistogram, 24, true), 3222u);
    EXPECT_EQ(limitOf(shouldUse2DHistogram, 25, true), 23 + 3200 * 2 - 1u);
    EXPECT_EQ(limitOf(shouldUse2DHistogram, 24, false), 23 + 1900 - 1u);
    EXPECT_EQ(limitOf(shouldUse3DHistogram, 19, true), 18 + 700 - 1u);
    EXPECT_EQ(limitOf(shouldUse3DHistogram, 20, false), 18 + 6200 * 2 - 1u);
    // Wider than 32 bits.
    EXPECT_EQ(limitOf(shouldUse2DHistogram, 4000000000u, true), 0xffffffffu);
}

} // namespace
} // namespace qel::test
