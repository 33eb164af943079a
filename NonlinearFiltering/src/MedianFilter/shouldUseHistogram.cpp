#include "NonlinearFiltering/private/MedianFilter/shouldUseHistogram.h"

#include <vector>

namespace qel::nonlinear_filtering {

namespace {

/// `limits`: of radius 1, 2, 3 and so on, the range from which on a selection is faster.
bool isBelowLimit(std::vector<unsigned> const& limits, unsigned size, unsigned range)
{
    unsigned long const count = limits.size();
    if (size <= count)
        return limits[size - 1] > range;
    // The line begins at the number of limits, not at the last one: so it was measured.
    unsigned long const slope = limits[count - 1] - limits[count - 2];
    return range < count + slope * (size - count) - 1;
}

} // namespace

bool shouldUse2DHistogram(unsigned size, unsigned range, bool isSquare)
{
    static std::vector<unsigned> const square = {60,    300,   600,   1300,  1600,  2345,  3100,  3600,
                                                 4700,  5700,  7300,  8400,  10200, 11600, 14400, 16200,
                                                 18500, 22100, 24800, 27900, 31000, 34500, 37700};
    static std::vector<unsigned> const disk = {14,    85,    620,   1200,  1770,  2250,  2900,  3400,
                                               4150,  4900,  5500,  6400,  7900,  11000, 11200, 13000,
                                               14200, 15200, 19200, 20500, 22200, 26100, 28000};
    return isBelowLimit(isSquare ? square : disk, size, range);
}

bool shouldUse3DHistogram(unsigned size, unsigned range, bool isCube)
{
    static std::vector<unsigned> const cube = {415,   2100,  3600,  6000,  10000, 13400, 15000, 24200, 33000,
                                               43700, 54500, 65800, 75600, 72000, 90000, 74000, 75600, 76300};
    static std::vector<unsigned> const ball = {47,    530,   2100,  3100,  5000,  7500,  10000, 15000, 18200,
                                               22500, 27000, 34700, 44300, 52400, 61700, 69300, 69500, 75700};
    return isBelowLimit(isCube ? cube : ball, size, range);
}

} // namespace qel::nonlinear_filtering
