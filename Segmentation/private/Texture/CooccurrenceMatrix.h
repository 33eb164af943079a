#pragma once

#include "Segmentation/private/Texture/CountEntropies.h"
#include "Segmentation/private/Texture/GreyLevelBins.h"

#include <qel/kernel/Offset3D.h>

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <vector>

namespace qel::segmentation::details {

/// What a CooccurrenceMatrix is asked for. The measures stand in the order of TextureFeatureTypes.
enum CoocIndicators : int
{
    displacementX = 0,
    displacementY,
    displacementZ,
    numOfPairs,
    angularSecondMoment,
    contrast,
    correlation,
    sumOfSquares,
    inverseDifferenceMoment,
    sumAverage,
    sumVariance,
    sumEntropy,
    entropy,
    differenceVariance,
    differenceEntropy,
    informationMeasuresCorrelation1,
    informationMeasuresCorrelation2
};
inline constexpr int numOfCoocIndicators = 17;
using CoocIndicatorSet = std::bitset<numOfCoocIndicators>;

/// How often the grey levels of two voxels, one step apart, are in the bins i and j: symmetric, both orders count.
///
/// It is a summary of pairs that come and go. P(i, j) is the part of all ordered pairs that is in the bins i and j. The
/// matrix never holds it: it holds counts, of which each measure is made. All that a measure needs is kept up to date
/// pair by pair, in whole numbers:
/// - sums over the pairs of i + j and |i - j| and of their squares, from which six measures follow at once, being means
///   and variances;
/// - the sum of squared counts;
/// - the sum of n log n over the counts of the matrix, of its marginal, and of the distributions of i + j and |i - j|,
///   which are the entropies.
/// So a measure costs the same for any number of bins, but for one that goes over |i - j|; and since whole numbers come
/// and go without rounding, a matrix that slid here is the same as one that was filled here. Only what the chosen
/// indicators need is kept.
///
/// Everything but the constructors and `init` throws std::runtime_error "Cooccurrence matrix used but not initialized"
/// without bins.
class CooccurrenceMatrix
{
public:
    using Bin = GreyLevelBins::Bin;

    CooccurrenceMatrix() = default;

    /// Empties the matrix. `entropies` must hold counts of twice as many pairs as there will be.
    void init(GreyLevelBins const& bins, kernel::Offset3D const& direction,
              std::shared_ptr<CountEntropies const> entropies, CoocIndicatorSet const& indicators);
    /// Takes all pairs out.
    void reinit();

    GreyLevelBins const& bins() const { return m_bins; }

    void increment(double first, double second);
    void decrement(double first, double second);
    /// The same for `count` pairs, already in bins.
    void add(Bin const* first, Bin const* second, std::size_t count);
    void remove(Bin const* first, Bin const* second, std::size_t count);

    /// The indicator, which is kept until pairs come or go. It throws std::runtime_error "Invalid cooccurrence matrix
    /// indicator idx" where there is no such indicator, or it was not chosen.
    double computeIfNotReady(int indicator)
    {
        if (indicator >= 0 && indicator < numOfCoocIndicators && m_isReady[static_cast<std::size_t>(indicator)])
            return m_indicators[static_cast<std::size_t>(indicator)];
        return computeNow(indicator);
    }

    /// Bytes that a matrix takes for these bins.
    static double bytesFor(GreyLevelBins const& bins, CoocIndicatorSet const& indicators);

private:
    /// What is kept for the indicators.
    struct Needs
    {
        explicit Needs(CoocIndicatorSet const& indicators);
        bool moments;
        bool squares;
        bool elementEntropy;
        bool marginal;
        bool sums;
        bool differences;
        bool differenceEntropy;
        bool elements() const { return squares || elementEntropy; }
    };

    struct PairCodes;

    void requireStorage() const;
    template <bool isAdded> void change(Bin const* first, Bin const* second, std::size_t count);
    template <bool isAdded> void changeSome(Bin const* first, Bin const* second, std::size_t count);
    double computeNow(int indicator);
    void normalize();
    double compute(int indicator);
    double inverseDifferences() const;
    double scaledEntropy(double entropy) const { return (m_logOfBinSize + entropy) * m_bins.binSize(); }

    GreyLevelBins m_bins;
    kernel::Offset3D m_direction;
    CoocIndicatorSet m_chosen;
    Needs m_needs{CoocIndicatorSet()};
    std::shared_ptr<CountEntropies const> m_entropies;
    double m_logOfBinSize = 0;

    std::uint64_t m_pairs = 0;
    std::uint64_t m_sumOfSums = 0; // over the pairs, of i + j
    std::uint64_t m_sumOfSquaredSums = 0;
    std::uint64_t m_sumOfDifferences = 0; // of |i - j|
    std::uint64_t m_sumOfSquaredDifferences = 0;
    std::uint64_t m_offDiagonal = 0; // pairs with i != j
    std::uint64_t m_sumOfSquaredCounts = 0;
    std::int64_t m_elementEntropy = 0; // sums of n log n
    std::int64_t m_marginalEntropy = 0;
    std::int64_t m_sumEntropy = 0;
    std::int64_t m_differenceEntropy = 0;

    std::vector<std::uint32_t> m_elements;    // of (i, j), j <= i, at i (i + 1) / 2 + j: pairs in either order
    std::vector<std::uint32_t> m_marginal;    // of i: ends of pairs
    std::vector<std::uint32_t> m_sums;        // of i + j
    std::vector<std::uint32_t> m_differences; // of |i - j|
    std::vector<double> m_inverseWeights;     // of |i - j|, as long as m_differences

    std::uint64_t m_normalizedPairs = 0;
    double m_perPair = 0; // 1 / pairs
    CoocIndicatorSet m_isReady;
    std::array<double, numOfCoocIndicators> m_indicators{};
};

} // namespace qel::segmentation::details
