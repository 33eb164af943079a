#pragma once

#include <cstdint>
#include <vector>

namespace qel::math {

/// What a Histogram keeps once it is computed: "MSR_MEAN = 0, MSR_STDDEV, ...".
enum MeasuresIndex : int
{
    MSR_MEAN = 0,
    MSR_STDDEV,
    MSR_VARIANCE,
    MSR_SKEWNESS,
    MSR_KURTOSIS,
    MSR_PEAK
};

/// Counts of real values in bins of one width over a fixed range, filled and emptied one value at a time.
///
/// A value outside of the range, and NaN, counts nowhere. Measures stand each bin for its centre; they are computed
/// when they are asked for and kept until the counts change. All of them throw InvalidCall where there are no bins, or
/// no values in them. One histogram belongs to one task: asking for a measure writes.
///
/// Removing what was not added wraps the count of its bin: the caller removes only what it added.
class Histogram
{
public:
    /// Without bins, until a `reset`.
    Histogram();
    /// `numBins` bins of equal width between the two limits, in whichever order these come. None for 0 bins.
    Histogram(double min, double max, unsigned long numBins);
    /// Bins of a given width; the last one is wider or narrower as rounding leaves it. None where the width is below
    /// the smallest normal number, or no number of bins fits the range.
    Histogram(double min, double max, double binSize);
    virtual ~Histogram();

    void reset(double min, double max, unsigned long numBins);
    void reset(double min, double max, double binSize);
    /// Takes all values out and leaves the bins.
    void reset();

    void increment(double value)
    {
        requireBins();
        incrementBin(binOf(value));
    }

    void decrement(double value)
    {
        requireBins();
        decrementBin(binOf(value));
    }

    /// The bin that a value counts in; the number of bins where it counts nowhere. For those who count one value in
    /// many histograms of the same bins.
    std::uint64_t binOf(double value) const { return isInRange(value) ? indexOf(value) : m_numBins; }
    void incrementBin(std::uint64_t bin)
    {
        if (bin >= m_numBins)
            return;
        ++m_bins[bin];
        ++m_total;
        forget();
    }
    void decrementBin(std::uint64_t bin)
    {
        if (bin >= m_numBins)
            return;
        if (m_total == 0)
            throwNothingToRemove();
        --m_bins[bin];
        --m_total;
        forget();
    }
    std::uint64_t numOfBins() const { return m_numBins; }
    /// Throws where there are no bins.
    void requireBins() const
    {
        if (m_status == Status::withoutBins)
            throwNoBins();
    }

    /// Where a bin begins, ends and has its centre. BadIndex beyond the last one. The last bin ends at the maximum.
    double getClassStart(unsigned long index) const;
    double getClassEnd(unsigned long index) const;
    double getClassMean(unsigned long index) const;

    double computeMean();
    /// The mean of squares less the square of the mean, which rounding may leave slightly negative.
    double computeVariance();
    /// 0 where the variance is not above the smallest normal number.
    double computeStddev();
    double computeSkewness();
    /// That of a normal distribution is 0.
    double computeKurtosis();
    /// The centre of the fullest bin, the lowest of equal ones.
    double computePeak();
    /// The value below which the part `ratio` of all values lies, if the values of a bin lie at its centre: linear
    /// between the centres of bins that are not empty.
    double computeQuantile(double ratio);

    /// Forgets the measures that are kept.
    void resetMeasures();

private:
    /// A bin that is not empty.
    struct Filled
    {
        std::uint64_t index;
        std::uint64_t count;
        double centre;
    };

    enum class Status
    {
        withoutBins,
        changed,
        measured
    };

    void setRange(double min, double max);
    double centre(std::uint64_t index) const;
    bool isInRange(double value) const { return value >= m_min && value <= m_max; }
    std::uint64_t indexOf(double value) const
    {
        double const place = (value - m_min) / m_binSize;
        // Also where it is no number, for a range of one value.
        return place < static_cast<double>(m_numBins) ? static_cast<std::uint64_t>(place) : m_numBins - 1;
    }
    void forget()
    {
        m_isCollected = false;
        if (m_status == Status::measured)
            m_status = Status::changed;
    }
    void requireValues() const;
    void requireIndex(unsigned long index) const;
    [[noreturn]] static void throwNoBins();
    [[noreturn]] static void throwNothingToRemove();

    template <class Compute> double kept(MeasuresIndex measure, Compute const& compute);
    void collect();
    template <class Weigh> double sumOverBins(Weigh const& weigh);

    std::vector<std::uint64_t> m_bins;
    Status m_status = Status::withoutBins;
    double m_min = 0;
    double m_max = 0;
    double m_binSize = 0;
    std::uint64_t m_numBins = 0;
    std::uint64_t m_total = 0;
    std::vector<Filled> m_filled; // of the present counts, where m_isCollected
    bool m_isCollected = false;
    std::vector<double> m_measures;
    std::vector<unsigned char> m_isKept;
};

} // namespace qel::math
