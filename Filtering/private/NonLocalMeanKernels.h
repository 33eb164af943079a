#pragma once

#include <cstddef>

// The row kernels of the non-local means: rows of doubles.

namespace qel::filtering::smoothing {

/// out = (here - there)^2
void squaredDifferenceRow(double const* here, double const* there, double* out, std::size_t count);

/// sum = exp(-sum / divisor), in place. Sums are not negative, and so weights are never above 1; a sum of 0 weighs 1
/// also where the divisor is 0. Below exp(-708) a weight is 0.
void weightRow(double* sum, double divisor, std::size_t count);

/// weighted += weight * there + oppositeWeight * opposite; weights += weight + oppositeWeight
void accumulateRow(double const* weight, double const* there, double const* oppositeWeight, double const* opposite,
                   double* weighted, double* weights, std::size_t count);

/// out = (weighted + centre) / (weights + 1)
void closeRow(double const* weighted, double const* weights, double const* centre, double* out, std::size_t count);

} // namespace qel::filtering::smoothing
