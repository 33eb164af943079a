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

namespace {

/// Counts one more or one less for each of the codes, and gives what that changes in the sum of n log n.
template <bool isAdded>
std::int64_t countAll(std::uint32_t* __restrict counters, std::uint32_t const* __restrict codes, std::size_t count,
                      std::int64_t const* __restrict steps)
{
    std::int64_t change = 0;
    for (std::size_t k = 0; k < count; ++k) {
        std::uint32_t& counter = counters[codes[k]];
        std::uint32_t const lower = isAdded ? counter++ : --counter;
        change += steps[lower];
    }
    return change;
}

/// The same where nobody asks for the entropy. Gives the lower one of the counts before and behind each step.
template <bool isAdded>
void countAll(std::uint32_t* __restrict counters, std::uint32_t const* __restrict codes, std::size_t count,
              std::uint32_t* __restrict lower)
{
    for (std::size_t k = 0; k < count; ++k) {
        std::uint32_t& counter = counters[codes[k]];
        lower[k] = isAdded ? counter++ : --counter;
    }
}

} // namespace

/// What the groups of measures see of a few pairs. Loops over whole packets, without a branch on a level: which of two
/// levels is the higher one cannot be foreseen.
struct CooccurrenceMatrix::PairCodes
{
    static constexpr std::size_t most = 64;
    static constexpr std::size_t packet = 4;

    /// Behind the pairs stand some of the bins 0 and 0, which add nothing to the sums.
    PairCodes(Bin const* first, Bin const* second, std::size_t count)
        : packets((count + packet - 1) / packet * packet)
    {
        for (std::size_t k = count; k < packets; ++k)
            firstBin[k] = secondBin[k] = 0;
        for (std::size_t k = 0; k < count; ++k) {
            firstBin[k] = first[k];
            secondBin[k] = second[k];
        }
        forAll([&](std::size_t k) {
            std::int32_t const step = static_cast<std::int32_t>(firstBin[k]) - static_cast<std::int32_t>(secondBin[k]);
            std::int32_t const sign = step >> 31;
            sum[k] = firstBin[k] + secondBin[k];
            difference[k] = static_cast<std::uint32_t>((step ^ sign) - sign);
        });
    }

    /// Eight at a time, so that no loop has a rest.
    template <class Work> void forAll(Work const& work) const
    {
        for (std::size_t begin = 0; begin < packets; begin += packet)
            for (std::size_t k = begin; k < begin + packet; ++k)
                work(k);
    }

    std::size_t packets;
    std::uint32_t firstBin[most];
    std::uint32_t secondBin[most];
    std::uint32_t sum[most];
    std::uint32_t difference[most];
};

template <bool isAdded> void CooccurrenceMatrix::changeSome(Bin const* first, Bin const* second, std::size_t count)
{
    PairCodes const codes(first, second, count);
    std::int64_t const* const steps = m_entropies->steps();
    auto const change = [](auto& sum, auto by) { sum = isAdded ? sum + by : sum - by; };

    if (m_needs.moments) {
        std::uint64_t sums = 0;
        std::uint64_t squaredSums = 0;
        std::uint64_t differences = 0;
        std::uint64_t squaredDifferences = 0;
        codes.forAll([&](std::size_t k) {
            sums += codes.sum[k];
            squaredSums += static_cast<std::uint64_t>(codes.sum[k]) * codes.sum[k];
            differences += codes.difference[k];
            squaredDifferences += static_cast<std::uint64_t>(codes.difference[k]) * codes.difference[k];
        });
        change(m_sumOfSums, sums);
        change(m_sumOfSquaredSums, squaredSums);
        change(m_sumOfDifferences, differences);
        change(m_sumOfSquaredDifferences, squaredDifferences);
    }
    if (m_needs.elements()) {
        std::uint32_t elements[PairCodes::most];
        codes.forAll([&](std::size_t k) {
            std::uint32_t const i = (codes.sum[k] + codes.difference[k]) / 2;
            // i (i + 1) / 2, which may take 32 bits.
            elements[k] = (i % 2 == 0 ? i / 2 * (i + 1) : (i + 1) / 2 * i) + (codes.sum[k] - i);
        });
        std::uint32_t lower[PairCodes::most];
        countAll<isAdded>(m_elements.data(), elements, count, lower);
        std::fill(lower + count, lower + codes.packets, 0u);
        if (m_needs.squares) {
            // One of the diagonal is two in the square matrix, one aside of it is one in two places. What stands behind
            // the pairs is on the diagonal, and was not counted.
            std::uint64_t squares = 0;
            codes.forAll([&](std::size_t k) {
                std::uint32_t const square = 2 * lower[k] + 1;
                squares += codes.difference[k] == 0 ? 2 * square : square;
            });
            change(m_sumOfSquaredCounts, squares - 2 * (codes.packets - count));
        }
        if (m_needs.elementEntropy) {
            std::int64_t entropies = 0;
            for (std::size_t k = 0; k < count; ++k)
                entropies += steps[lower[k]];
            change(m_elementEntropy, entropies);
            std::uint64_t offDiagonal = 0;
            codes.forAll([&](std::size_t k) { offDiagonal += codes.difference[k] != 0; });
            change(m_offDiagonal, offDiagonal);
        }
    }
    if (m_needs.marginal) {
        change(m_marginalEntropy, countAll<isAdded>(m_marginal.data(), codes.firstBin, count, steps));
        change(m_marginalEntropy, countAll<isAdded>(m_marginal.data(), codes.secondBin, count, steps));
    }
    if (m_needs.sums)
        change(m_sumEntropy, countAll<isAdded>(m_sums.data(), codes.sum, count, steps));
    if (m_needs.differenceEntropy) {
        change(m_differenceEntropy, countAll<isAdded>(m_differences.data(), codes.difference, count, steps));
    } else if (m_needs.differences) {
        std::uint32_t lower[PairCodes::most];
        countAll<isAdded>(m_differences.data(), codes.difference, count, lower);
    }
}

template <bool isAdded> void CooccurrenceMatrix::change(Bin const* first, Bin const* second, std::size_t count)
{
    m_isReady.reset();
    m_pairs = isAdded ? m_pairs + count : m_pairs - count;
    for (std::size_t begin = 0; begin < count; begin += PairCodes::most) {
        std::size_t const length = std::min(count - begin, PairCodes::most);
        changeSome<isAdded>(first + begin, second + begin, length);
    }
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
