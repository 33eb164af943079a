#include "Registration/private/ShapeBasedMatching/ScoreKernel.h"

#include <algorithm>
#include <cmath>

namespace qel::registration {

namespace {

// Two neighbouring positions. Memory is anywhere.
using Pair [[gnu::vector_size(16)]] = double;
using PairInMemory [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]] = double;
constexpr std::size_t numOfPairs = positionsAtOnce / 2;

Pair load(double const* from) { return *reinterpret_cast<PairInMemory const*>(from); }

// All positions below; NaN is not.
bool areBelow(Pair const* sums, double reachable, double limit, bool absolute)
{
    for (std::size_t i = 0; i < numOfPairs; ++i) {
        double const a = absolute ? std::abs(sums[i][0]) : sums[i][0];
        double const b = absolute ? std::abs(sums[i][1]) : sums[i][1];
        if (!(a + reachable < limit) || !(b + reachable < limit))
            return false;
    }
    return true;
}

} // namespace

bool scorePositions(double const* x, double const* y, Term const* terms, std::size_t numOfTerms,
                    double const* reachable, double limit, bool absolute, double* scores)
{
    Pair sums[numOfPairs] = {};
    for (std::size_t first = 0; first < numOfTerms; first += termsAtOnce, ++reachable) {
        std::size_t const end = std::min(first + termsAtOnce, numOfTerms);
        for (std::size_t i = first; i < end; ++i) {
            Pair const weightX = {terms[i].x, terms[i].x};
            Pair const weightY = {terms[i].y, terms[i].y};
            double const* const rowX = x + terms[i].offset;
            double const* const rowY = y + terms[i].offset;
            for (std::size_t pair = 0; pair < numOfPairs; ++pair)
                sums[pair] += load(rowX + 2 * pair) * weightX + load(rowY + 2 * pair) * weightY;
        }
        if (areBelow(sums, *reachable, limit, absolute))
            return false;
    }
    for (std::size_t pair = 0; pair < numOfPairs; ++pair) {
        scores[2 * pair] = sums[pair][0];
        scores[2 * pair + 1] = sums[pair][1];
    }
    return true;
}

void scoreOddTerms(double const* x, double const* y, Term const* terms, std::size_t numOfTerms, double* scores)
{
    for (std::size_t position = 0; position < positionsAtOnce; ++position) {
        double sum = 0;
        for (std::size_t i = 0; i < numOfTerms; ++i) {
            double const atX = x[static_cast<long>(position) + terms[i].offset];
            double const atY = y[static_cast<long>(position) + terms[i].offset];
            if (atX != 0 || atY != 0)
                sum += atX * terms[i].x + atY * terms[i].y;
        }
        scores[position] = sum;
    }
}

} // namespace qel::registration
