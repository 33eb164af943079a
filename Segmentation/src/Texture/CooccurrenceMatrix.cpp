#include "Segmentation/private/Texture/CooccurrenceMatrix.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace qel::segmentation::details {

namespace {

using Wide = __int128;

/// a b - c d, rounded once.
double differenceOfProducts(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d)
{
    Wide const exact = static_cast<Wide>(a) * static_cast<Wide>(b) - static_cast<Wide>(c) * static_cast<Wide>(d);
    // The short way, which nearly all numbers go.
    if (auto const narrow = static_cast<std::int64_t>(exact); static_cast<Wide>(narrow) == exact)
        return static_cast<double>(narrow);
    return static_cast<double>(exact);
}

constexpr std::size_t lanes = 4;

std::size_t roundedUp(std::size_t count) { return (count + lanes - 1) / lanes * lanes; }

} // namespace

CooccurrenceMatrix::Needs::Needs(CoocIndicatorSet const& indicators)
    : moments(indicators[contrast] || indicators[correlation] || indicators[sumOfSquares] || indicators[sumAverage] ||
              indicators[sumVariance] || indicators[differenceVariance])
    , squares(indicators[angularSecondMoment])
    , elementEntropy(indicators[entropy] || indicators[informationMeasuresCorrelation1] ||
                     indicators[informationMeasuresCorrelation2])
    , marginal(indicators[informationMeasuresCorrelation1] || indicators[informationMeasuresCorrelation2])
    , sums(indicators[sumEntropy])
    , differences(indicators[inverseDifferenceMoment] || indicators[details::differenceEntropy])
    , differenceEntropy(indicators[details::differenceEntropy])
{}

double CooccurrenceMatrix::bytesFor(GreyLevelBins const& bins, CoocIndicatorSet const& indicators)
{
    auto const size = static_cast<double>(bins.size());
    double const elements = Needs(indicators).elements() ? size * (size + 1) / 2 : 0;
    return (elements + 4 * size) * sizeof(std::uint32_t) + size * sizeof(double);
}

void CooccurrenceMatrix::init(GreyLevelBins const& bins, kernel::Offset3D const& direction,
                              std::shared_ptr<CountEntropies const> entropies, CoocIndicatorSet const& indicators)
{
    m_bins = bins;
    m_direction = direction;
    m_chosen = indicators;
    m_needs = Needs(indicators);
    m_entropies = std::move(entropies);
    m_logOfBinSize = std::log(bins.binSize());

    std::size_t const size = bins.size();
    m_elements.resize(m_needs.elements() ? size * (size + 1) / 2 : 0);
    m_marginal.resize(m_needs.marginal ? size : 0);
    m_sums.resize(m_needs.sums && size > 0 ? 2 * size - 1 : 0);
    m_differences.resize(m_needs.differences ? roundedUp(size) : 0);
    m_inverseWeights.resize(m_differences.size());
    for (std::size_t k = 0; k < m_inverseWeights.size(); ++k) {
        double const difference = static_cast<double>(k * k) * bins.binSize() * bins.binSize();
        m_inverseWeights[k] = 1 / (difference + 1);
    }
    reinit();
}

void CooccurrenceMatrix::reinit()
{
    m_pairs = 0;
    m_sumOfSums = m_sumOfSquaredSums = m_sumOfDifferences = m_sumOfSquaredDifferences = 0;
    m_offDiagonal = m_sumOfSquaredCounts = 0;
    m_elementEntropy = m_marginalEntropy = m_sumEntropy = m_differenceEntropy = 0;
    for (std::vector<std::uint32_t>* const counts : {&m_elements, &m_marginal, &m_sums, &m_differences})
        std::fill(counts->begin(), counts->end(), 0u);
    m_normalizedPairs = 0;
    m_perPair = 0;
    m_isReady.reset();
    m_indicators.fill(0);
}

void CooccurrenceMatrix::requireStorage() const
{
    if (m_bins.size() == 0)
        throw std::runtime_error("Cooccurrence matrix used but not initialized");
}

void CooccurrenceMatrix::increment(double first, double second)
{
    requireStorage();
    Bin const i = m_bins.binOf(first);
    Bin const j = m_bins.binOf(second);
    change<true>(&i, &j, 1);
}

void CooccurrenceMatrix::decrement(double first, double second)
{
    requireStorage();
    Bin const i = m_bins.binOf(first);
    Bin const j = m_bins.binOf(second);
    change<false>(&i, &j, 1);
}

void CooccurrenceMatrix::add(Bin const* first, Bin const* second, std::size_t count)
{
    requireStorage();
    change<true>(first, second, count);
}

void CooccurrenceMatrix::remove(Bin const* first, Bin const* second, std::size_t count)
{
    requireStorage();
    change<false>(first, second, count);
}

/// Counts one more or one less, and gives what that changes in n log n.
template <bool isAdded> inline std::int64_t CooccurrenceMatrix::countOne(std::uint32_t& counter) const
{
    std::uint32_t const lower = isAdded ? counter++ : --counter;
    std::int64_t const* const entropies = m_entropies->data();
    return entropies[lower + 1] - entropies[lower];
}

template <bool isAdded, bool withSquares, bool withEntropy>
void CooccurrenceMatrix::changeElements(Bin const* first, Bin const* second, std::size_t count)
{
    std::uint32_t* const elements = m_elements.data();
    std::uint64_t squares = 0;
    std::uint64_t offDiagonal = 0;
    std::int64_t changeOfEntropy = 0;
    for (std::size_t k = 0; k < count; ++k) {
        std::uint32_t const i = std::max(first[k], second[k]);
        std::uint32_t const j = std::min(first[k], second[k]);
        std::uint32_t& element = elements[static_cast<std::size_t>(i) * (i + 1) / 2 + j];
        if constexpr (withEntropy) {
            changeOfEntropy += countOne<isAdded>(element);
            offDiagonal += i != j;
        } else {
            isAdded ? ++element : --element;
        }
        if constexpr (withSquares) {
            std::uint32_t const lower = isAdded ? element - 1 : element;
            // One of the diagonal is two in the square matrix, one aside of it is one in two places.
            squares += (2ul * lower + 1) << (i == j);
        }
    }
    if constexpr (isAdded) {
        m_sumOfSquaredCounts += squares;
        m_offDiagonal += offDiagonal;
        m_elementEntropy += changeOfEntropy;
    } else {
        m_sumOfSquaredCounts -= squares;
        m_offDiagonal -= offDiagonal;
        m_elementEntropy -= changeOfEntropy;
    }
}

template <bool isAdded>
void CooccurrenceMatrix::change(Bin const* __restrict first, Bin const* __restrict second, std::size_t count)
{
    m_isReady.reset();
    m_pairs = isAdded ? m_pairs + count : m_pairs - count;

    if (m_needs.moments) {
        std::uint64_t sums = 0;
        std::uint64_t squaredSums = 0;
        std::uint64_t differences = 0;
        std::uint64_t squaredDifferences = 0;
        for (std::size_t k = 0; k < count; ++k) {
            std::uint64_t const sum = std::uint64_t(first[k]) + second[k];
            std::uint64_t const difference =
                std::uint64_t(std::max(first[k], second[k])) - std::min(first[k], second[k]);
            sums += sum;
            squaredSums += sum * sum;
            differences += difference;
            squaredDifferences += difference * difference;
        }
        m_sumOfSums = isAdded ? m_sumOfSums + sums : m_sumOfSums - sums;
        m_sumOfSquaredSums = isAdded ? m_sumOfSquaredSums + squaredSums : m_sumOfSquaredSums - squaredSums;
        m_sumOfDifferences = isAdded ? m_sumOfDifferences + differences : m_sumOfDifferences - differences;
        m_sumOfSquaredDifferences =
            isAdded ? m_sumOfSquaredDifferences + squaredDifferences : m_sumOfSquaredDifferences - squaredDifferences;
    }
    if (m_needs.squares && m_needs.elementEntropy)
        changeElements<isAdded, true, true>(first, second, count);
    else if (m_needs.squares)
        changeElements<isAdded, true, false>(first, second, count);
    else if (m_needs.elementEntropy)
        changeElements<isAdded, false, true>(first, second, count);

    auto const changeEntropy = [](std::int64_t& sum, std::int64_t change) {
        sum = isAdded ? sum + change : sum - change;
    };
    if (m_needs.marginal) {
        std::int64_t sum = 0;
        for (std::size_t k = 0; k < count; ++k) {
            sum += countOne<isAdded>(m_marginal[first[k]]);
            sum += countOne<isAdded>(m_marginal[second[k]]);
        }
        changeEntropy(m_marginalEntropy, sum);
    }
    if (m_needs.sums) {
        std::int64_t sum = 0;
        for (std::size_t k = 0; k < count; ++k)
            sum += countOne<isAdded>(m_sums[std::size_t(first[k]) + second[k]]);
        changeEntropy(m_sumEntropy, sum);
    }
    if (m_needs.differences) {
        auto const differenceAt = [&](std::size_t k) -> std::uint32_t& {
            return m_differences[std::size_t(std::max(first[k], second[k])) - std::min(first[k], second[k])];
        };
        if (m_needs.differenceEntropy) {
            std::int64_t sum = 0;
            for (std::size_t k = 0; k < count; ++k)
                sum += countOne<isAdded>(differenceAt(k));
            changeEntropy(m_differenceEntropy, sum);
        } else {
            for (std::size_t k = 0; k < count; ++k)
                isAdded ? ++differenceAt(k) : --differenceAt(k);
        }
    }
}

double CooccurrenceMatrix::computeNow(int indicator)
{
    requireStorage();
    bool const isMeasure = indicator > numOfPairs;
    if (indicator < 0 || indicator >= numOfCoocIndicators ||
        (isMeasure && !m_chosen[static_cast<std::size_t>(indicator)]))
        throw std::runtime_error("Invalid cooccurrence matrix indicator idx");
    if (m_pairs != m_normalizedPairs)
        normalize();
    double const value = compute(indicator);
    m_indicators[static_cast<std::size_t>(indicator)] = value;
    m_isReady.set(static_cast<std::size_t>(indicator));
    return value;
}

/// Once a row: as many pairs come as go.
void CooccurrenceMatrix::normalize()
{
    m_normalizedPairs = m_pairs;
    m_perPair = m_pairs == 0 ? 0.0 : 1 / static_cast<double>(m_pairs);
}

/// The sum of d(k) / (k^2 b^2 + 1), in lanes whose order is written out.
double CooccurrenceMatrix::inverseDifferences() const
{
    double sums[lanes] = {};
    for (std::size_t k = 0; k < m_differences.size(); k += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            sums[lane] +=
                static_cast<double>(static_cast<std::int32_t>(m_differences[k + lane])) * m_inverseWeights[k + lane];
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) * m_perPair;
}

double CooccurrenceMatrix::compute(int indicator)
{
    double const b = m_bins.binSize();
    double const squaredB = b * b;
    double const perPair = m_perPair;
    double const perPairs = perPair * perPair;
    CountEntropies const& entropies = *m_entropies;
    // Entropies of the distributions, times the pairs, in the units of the table. The two of the matrix stand in the
    // table's units until their difference is made: it is exactly 0 where one bin holds all.
    auto const ofElements = [&] {
        return entropies[m_pairs] - m_elementEntropy + static_cast<std::int64_t>(m_offDiagonal) * entropies.logOfTwo();
    };
    auto const twiceOfMarginal = [&] { return entropies[2 * m_pairs] - m_marginalEntropy; };
    auto const inNats = [&](std::int64_t units) { return static_cast<double>(units) * entropies.unit() * perPair; };

    switch (indicator) {
    case displacementX:
        return static_cast<double>(m_direction.x);
    case displacementY:
        return static_cast<double>(m_direction.y);
    case displacementZ:
        return static_cast<double>(m_direction.z);
    case numOfPairs:
        return static_cast<double>(m_pairs);
    case angularSecondMoment:
        return static_cast<double>(m_sumOfSquaredCounts) * perPairs * 0.5;
    case contrast:
        return static_cast<double>(m_sumOfSquaredDifferences) * perPair * squaredB;
    case correlation: {
        // (i + j)^2 and (i - j)^2 give the products and the squares of the levels.
        double const variance =
            differenceOfProducts(m_pairs, m_sumOfSquaredSums + m_sumOfSquaredDifferences, m_sumOfSums, m_sumOfSums);
        if (variance == 0)
            return 0;
        return differenceOfProducts(m_pairs, m_sumOfSquaredSums - m_sumOfSquaredDifferences, m_sumOfSums, m_sumOfSums) /
               variance;
    }
    case sumOfSquares:
        return differenceOfProducts(m_pairs, m_sumOfSquaredSums + m_sumOfSquaredDifferences, m_sumOfSums, m_sumOfSums) *
               perPairs * 0.25 * squaredB;
    case inverseDifferenceMoment:
        return inverseDifferences();
    case sumAverage:
        // The scale of the sum is the square of the bin size, that of the minimum is not.
        return m_pairs == 0 ? 0.0 : static_cast<double>(m_sumOfSums) * perPair * squaredB + 2 * m_bins.min();
    case sumVariance:
        return differenceOfProducts(m_pairs, m_sumOfSquaredSums, m_sumOfSums, m_sumOfSums) * perPairs * squaredB *
               squaredB;
    case sumEntropy:
        return scaledEntropy(inNats(entropies[m_pairs] - m_sumEntropy));
    case entropy:
        return scaledEntropy(inNats(ofElements()));
    case differenceVariance:
        return differenceOfProducts(m_pairs, m_sumOfSquaredDifferences, m_sumOfDifferences, m_sumOfDifferences) *
               perPairs * squaredB;
    case details::differenceEntropy:
        return scaledEntropy(inNats(entropies[m_pairs] - m_differenceEntropy));
    case informationMeasuresCorrelation1: {
        // Both cross entropies of the matrix with the product of its marginals are twice the entropy of the marginal.
        double const ofMarginal = scaledEntropy(inNats(twiceOfMarginal()) * 0.5);
        if (!(std::abs(ofMarginal) > 1.1920928955078125e-7))
            return 0;
        return inNats(ofElements() - twiceOfMarginal()) * b / ofMarginal;
    }
    default: {
        double const excess = std::abs(inNats(twiceOfMarginal() - ofElements()) * b);
        return std::sqrt(1 - std::exp(-2 * excess));
    }
    }
}

} // namespace qel::segmentation::details
