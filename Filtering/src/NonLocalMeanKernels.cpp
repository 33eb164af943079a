#include "Filtering/private/NonLocalMeanKernels.h"

#include <bit>
#include <cstdint>

namespace qel::filtering::smoothing {

void squaredDifferenceRow(double const* __restrict here, double const* __restrict there, double* __restrict out,
                          std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        double const difference = here[x] - there[x];
        out[x] = difference * difference;
    }
}

// The exponential of the C library is a call for each voxel. This one becomes vector
// code: e^y = 2^k * e^r with r within half of ln 2, and e^r by its series up to the 13th power, whose rest is below the
// last bit.
void weightRow(double* __restrict sum, double divisor, std::size_t count)
{
    constexpr double lowest = -708;
    constexpr double log2e = 0x1.71547652b82fep+0;
    constexpr double ln2High = 0x1.62e42fefa38p-1; // its last bits are 0: exact times k
    constexpr double ln2Low = 0x1.ef35793c7673p-45;
    constexpr double rounder = 0x1.8p+52; // leaves a whole number in the last bits
    for (std::size_t x = 0; x < count; ++x) {
        double const quotient = -(sum[x] / divisor);
        double const y = sum[x] == 0 ? 0 : quotient;
        double const shifted = y * log2e + rounder;
        double const k = shifted - rounder;
        double const r = (y - k * ln2High) - k * ln2Low;
        // Pairs, pairs of pairs and so on: few of these wait for each other.
        double const r2 = r * r;
        double const r4 = r2 * r2;
        double const from0 = (1.0 + r) + (1.0 / 2 + 1.0 / 6 * r) * r2;
        double const from4 = (1.0 / 24 + 1.0 / 120 * r) + (1.0 / 720 + 1.0 / 5040 * r) * r2;
        double const from8 = (1.0 / 40320 + 1.0 / 362880 * r) + (1.0 / 3628800 + 1.0 / 39916800 * r) * r2;
        double const from12 = 1.0 / 479001600 + 1.0 / 6227020800 * r;
        double const series = (from0 + from4 * r4) + (from8 + from12 * r4) * (r4 * r4);
        std::uint64_t const power = std::bit_cast<std::uint64_t>(shifted) << 52;
        double const exponential = std::bit_cast<double>(std::bit_cast<std::uint64_t>(series) + power);
        double const weight = y < lowest ? 0 : exponential;
        sum[x] = y == y ? weight : y; // what is no number stays none
    }
}

void accumulateRow(double const* __restrict weight, double const* __restrict there,
                   double const* __restrict oppositeWeight, double const* __restrict opposite,
                   double* __restrict weighted, double* __restrict weights, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x) {
        weighted[x] += weight[x] * there[x] + oppositeWeight[x] * opposite[x];
        weights[x] += weight[x] + oppositeWeight[x];
    }
}

void closeRow(double const* __restrict weighted, double const* __restrict weights, double const* __restrict centre,
              double* __restrict out, std::size_t count)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = (weighted[x] + centre[x]) / (weights[x] + 1);
}

} // namespace qel::filtering::smoothing
