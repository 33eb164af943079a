#pragma once

#include "Segmentation/private/Texture/CooccurrenceMatrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace qel::test {

using Levels = std::vector<std::pair<double, double>>;

/// Measures of co-occurrence as they are defined: from the full square matrix of probabilities, sum by sum, with its
/// distributions, in long doubles.
class PlainCooccurrence
{
public:
    PlainCooccurrence(double min, double max, double binSize, Levels const& pairs)
        : m_min(min)
        , m_max(max)
        , b(binSize)
        , n(static_cast<int>(std::ceil((max - min + 1.0) / binSize)))
        , m_p(static_cast<std::size_t>(n) * static_cast<std::size_t>(n))
        , px(static_cast<std::size_t>(n))
        , s(2 * static_cast<std::size_t>(n) - 1)
        , d(static_cast<std::size_t>(n))
    {
        long double const part = 0.5L / static_cast<long double>(pairs.size());
        for (auto const& [first, second] : pairs) {
            p(binOf(first), binOf(second)) += part;
            p(binOf(second), binOf(first)) += part;
        }
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                at(px, i) += p(i, j);
                at(s, i + j) += p(i, j);
                at(d, std::abs(i - j)) += p(i, j);
            }
    }

    int binOf(double value) const
    {
        if (value != value || value < m_min)
            return 0;
        if (value >= m_max)
            return n - 1;
        return std::min(n - 1, static_cast<int>((value - m_min) / b));
    }

    long double measure(int indicator)
    {
        using namespace segmentation::details;
        switch (indicator) {
        case angularSecondMoment:
            return sum([&](int i, int j) { return p(i, j) * p(i, j); });
        case contrast:
            return sum([&](int i, int j) { return p(i, j) * squared(i - j); }) * b * b;
        case correlation: {
            long double const mu = mean();
            long double v = -mu * mu;
            for (int i = 0; i < n; ++i)
                v += squared(i) * at(px, i);
            return v == 0 ? 0 : sum([&](int i, int j) { return (i - mu) * (j - mu) * p(i, j); }) / v;
        }
        case sumOfSquares: {
            long double const mu = mean();
            return sum([&](int i, int j) { return squared(i - mu) * p(i, j); }) * b * b;
        }
        case inverseDifferenceMoment:
            return sum([&](int i, int j) { return p(i, j) / (squared(i - j) * b * b + 1); });
        case sumAverage: {
            long double result = 0;
            for (int k = 0; k < 2 * n - 1; ++k)
                result += (static_cast<long double>(k) * b * b + 2 * m_min) * at(s, k);
            return result;
        }
        case sumVariance: {
            long double const average = measure(sumAverage);
            long double result = 0;
            for (int k = 0; k < 2 * n - 1; ++k)
                result += squared(static_cast<long double>(k) * b * b + 2 * m_min - average) * at(s, k);
            return result;
        }
        case sumEntropy:
            return (std::log(static_cast<long double>(b)) + entropyOf(s)) * b;
        case entropy:
            return (std::log(static_cast<long double>(b)) + entropyOf(m_p)) * b;
        case differenceVariance: {
            long double m = 0;
            for (int k = 0; k < n; ++k)
                m += k * at(d, k);
            long double result = 0;
            for (int k = 0; k < n; ++k)
                result += squared(k - m) * at(d, k);
            return result * b * b;
        }
        case differenceEntropy:
            return (std::log(static_cast<long double>(b)) + entropyOf(d)) * b;
        case informationMeasuresCorrelation1: {
            long double const crossed = -sum(
                [&](int i, int j) { return p(i, j) > 0 ? p(i, j) * (std::log(at(px, i)) + std::log(at(px, j))) : 0; });
            long double const logB = std::log(static_cast<long double>(b));
            long double const divisor = (logB + entropyOf(px)) * b;
            if (!(std::abs(divisor) > 1.1920928955078125e-7L))
                return 0;
            return (measure(entropy) - (crossed + logB) * b) / divisor;
        }
        default: {
            long double const crossed = -sum([&](int i, int j) {
                long double const product = at(px, i) * at(px, j);
                return product > 0 ? product * (std::log(at(px, i)) + std::log(at(px, j))) : 0;
            });
            long double const logB = std::log(static_cast<long double>(b));
            return std::sqrt(1 - std::exp(-2 * std::abs((logB + crossed) * b - measure(entropy))));
        }
        }
    }

private:
    static long double squared(long double value) { return value * value; }
    static long double& at(std::vector<long double>& values, int index)
    {
        return values.at(static_cast<std::size_t>(index));
    }
    long double& p(int i, int j) { return at(m_p, i * n + j); }
    template <class Term> long double sum(Term const& term)
    {
        long double result = 0;
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                result += term(i, j);
        return result;
    }
    long double mean()
    {
        long double mu = 0;
        for (int i = 0; i < n; ++i)
            mu += i * at(px, i);
        return mu;
    }
    static long double entropyOf(std::vector<long double> const& distribution)
    {
        long double result = 0;
        for (long double const part : distribution)
            if (part > 0)
                result -= part * std::log(part);
        return result;
    }

    double m_min;
    double m_max;
    double b;
    int n;
    std::vector<long double> m_p;
    std::vector<long double> px;
    std::vector<long double> s;
    std::vector<long double> d;
};

/// Within 1e-9 of the expected value. Where a measure is a difference of larger terms that may cancel, within that of
/// the terms; a root of what cancels is known to the root of that.
inline testing::AssertionResult sameMeasure(int indicator, double found, long double expected, double terms = 1)
{
    using namespace segmentation::details;
    double const wanted = static_cast<double>(expected);
    double tolerance = 1e-9 * std::abs(wanted) + 1e-14 * terms;
    if (indicator == informationMeasuresCorrelation2)
        tolerance += 1e-7 * (std::abs(wanted) < 1e-2);
    if (std::abs(found - wanted) <= tolerance)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "indicator " << indicator << ": expected " << wanted << ", got " << found;
}

} // namespace qel::test
