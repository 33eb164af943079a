#pragma once

#include <cstddef>

namespace qel::registration {

/// What a shape weighs the gradient at an offset from a position with.
struct Term
{
    long offset; ///< in doubles
    double x;
    double y;
    double weight; ///< its length
};

/// How many neighbouring positions are scored at once, and how many terms are added before the next look at what can
/// still be reached.
constexpr std::size_t positionsAtOnce = 12;
constexpr std::size_t termsAtOnce = 32;

/// The scores of positionsAtOnce positions from `x`, `y` on: sums over the terms, in their order.
///
/// `reachable[i]`: what the terms behind the i-th termsAtOnce can add at most. False, with no scores, where all
/// positions are sure to stay below `limit`. With `absolute` that holds for absolute values; the scores are plain sums
/// all the same.
bool scorePositions(double const* x, double const* y, Term const* terms, std::size_t numOfTerms,
                    double const* reachable, double limit, bool absolute, double* scores);

/// The same, for terms that may be infinite or no numbers: they count nothing where there is no gradient, in which 0
/// times them would not do. Gives up no position.
void scoreOddTerms(double const* x, double const* y, Term const* terms, std::size_t numOfTerms, double* scores);

} // namespace qel::registration
