#include "Math/private/Histogram.h"

#include "Core/private/Throw.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qel::math {

namespace {

constexpr double smallest = std::numeric_limits<double>::min();
constexpr unsigned long numOfMeasures = MSR_PEAK + 1;
// From here on a double is no longer a size that memory could have.
constexpr double tooMany = 9223372036854775808.0;

} // namespace

Histogram::Histogram()
    : m_measures(numOfMeasures)
    , m_isKept(numOfMeasures)
{}

Histogram::Histogram(double min, double max, unsigned long numBins)
    : Histogram()
{
    reset(min, max, numBins);
}

Histogram::Histogram(double min, double max, double binSize)
    : Histogram()
{
    reset(min, max, binSize);
}

Histogram::~Histogram() = default;

void Histogram::setRange(double min, double max)
{
    resetMeasures();
    m_status = Status::withoutBins;
    m_min = min;
    m_max = max;
    if (m_min > m_max)
        std::swap(m_min, m_max);
    m_total = 0;
    m_numBins = 0;
    m_binSize = 0;
    m_bins.clear();
}

void Histogram::reset(double min, double max, unsigned long numBins)
{
    setRange(min, max);
    if (numBins == 0)
        return;
    m_bins.resize(numBins);
    m_numBins = numBins;
    m_binSize = (m_max - m_min) / static_cast<double>(numBins);
    m_status = Status::changed;
}

void Histogram::reset(double min, double max, double binSize)
{
    setRange(min, max);
    if (binSize < smallest)
        return;
    double const count = (m_max - m_min) / binSize + 1.5;
    // No number where a limit or the width is none.
    if (!(count < tooMany))
        return;
    m_bins.resize(static_cast<std::uint64_t>(count));
    m_numBins = m_bins.size();
    m_binSize = binSize;
    m_status = Status::changed;
}

void Histogram::reset()
{
    resetMeasures();
    std::fill(m_bins.begin(), m_bins.end(), std::uint64_t(0));
    m_total = 0;
    forget();
}

void Histogram::resetMeasures()
{
    std::fill(m_measures.begin(), m_measures.end(), 0.0);
    std::fill(m_isKept.begin(), m_isKept.end(), static_cast<unsigned char>(0));
}

void Histogram::throwNoBins() { QEL_THROW(InvalidCall, "The histogram isn't correctly initialized."); }

void Histogram::throwNothingToRemove()
{
    QEL_THROW(InvalidCall, "The histogram is empty: impossible to decrement an intensity.");
}

void Histogram::requireValues() const
{
    requireBins();
    if (m_total == 0)
        QEL_THROW(InvalidCall, "The histogram is empty: impossible to compute a measure.");
}

void Histogram::requireIndex(unsigned long index) const
{
    requireBins();
    if (index >= m_numBins)
        QEL_THROW(BadIndex, "The class index must be less than the number of classes" << m_numBins);
}

double Histogram::centre(std::uint64_t index) const
{
    return m_min + static_cast<double>(index) * m_binSize + m_binSize * 0.5;
}

double Histogram::getClassStart(unsigned long index) const
{
    requireIndex(index);
    return index == 0 ? m_min : m_min + static_cast<double>(index) * m_binSize;
}

double Histogram::getClassEnd(unsigned long index) const
{
    requireIndex(index);
    return index == m_numBins - 1 ? m_max : m_min + static_cast<double>(index + 1) * m_binSize;
}

double Histogram::getClassMean(unsigned long index) const
{
    requireIndex(index);
    return centre(index);
}

template <class Compute> double Histogram::kept(MeasuresIndex measure, Compute const& compute)
{
    requireValues();
    if (m_status == Status::changed)
        resetMeasures();
    m_status = Status::measured;
    if (!m_isKept[measure]) {
        m_measures[measure] = compute();
        m_isKept[measure] = 1;
    }
    return m_measures[measure];
}

/// Under a small window most bins are empty, and add nothing to any measure: all of them go over the others.
void Histogram::collect()
{
    if (m_isCollected)
        return;
    m_filled.clear();
    for (std::uint64_t i = 0; i < m_numBins; ++i)
        if (m_bins[i] != 0)
            m_filled.push_back({i, m_bins[i], centre(i)});
    m_isCollected = true;
}

/// The sum of weigh(count, centre).
template <class Weigh> double Histogram::sumOverBins(Weigh const& weigh)
{
    collect();
    double sum = 0;
    for (Filled const& bin : m_filled)
        sum += weigh(static_cast<double>(bin.count), bin.centre);
    return sum;
}

double Histogram::computeMean()
{
    return kept(MSR_MEAN, [this] {
        return sumOverBins([](double count, double c) { return count * c; }) / static_cast<double>(m_total);
    });
}

double Histogram::computeVariance()
{
    return kept(MSR_VARIANCE, [this] {
        auto const n = static_cast<double>(m_total);
        double squares = 0;
        double const mean = sumOverBins([&squares](double count, double c) {
                                squares += count * c * c;
                                return count * c;
                            }) /
                            n;
        return squares / n - mean * mean;
    });
}

double Histogram::computeStddev()
{
    return kept(MSR_STDDEV, [this] {
        double const variance = computeVariance();
        return variance > smallest ? std::sqrt(variance) : 0.0;
    });
}

double Histogram::computeSkewness()
{
    return kept(MSR_SKEWNESS, [this] {
        auto const n = static_cast<double>(m_total);
        double const mean = computeMean();
        double cubes = 0;
        double const v = sumOverBins([&cubes, mean](double count, double c) {
                             double const d = c - mean;
                             double const square = count * d * d;
                             cubes += square * d;
                             return square;
                         }) /
                         n;
        return v > smallest ? cubes / n / (v * std::sqrt(v)) : 0.0;
    });
}

double Histogram::computeKurtosis()
{
    return kept(MSR_KURTOSIS, [this] {
        auto const n = static_cast<double>(m_total);
        double const mean = computeMean();
        double fourths = 0;
        double const v = sumOverBins([&fourths, mean](double count, double c) {
                             double const d = c - mean;
                             double const square = count * d * d;
                             fourths += square * d * d;
                             return square;
                         }) /
                         n;
        return v > smallest ? fourths / n / (v * v) - 3.0 : 0.0;
    });
}

double Histogram::computePeak()
{
    return kept(MSR_PEAK, [this] {
        collect();
        auto const fullest = std::max_element(m_filled.begin(), m_filled.end(), [](Filled const& a, Filled const& b) {
            return a.count < b.count; // the first of equal ones
        });
        return fullest->centre;
    });
}

double Histogram::computeQuantile(double ratio)
{
    requireValues();
    collect();
    double const target = static_cast<double>(m_total) * ratio;
    // Each bin has the number of values below its middle; empty ones in a row have one and the same. The walk goes from
    // number to number, and remembers the last bin that had another one.
    std::uint64_t current = 0;
    std::uint64_t previous = 0;
    std::uint64_t previousIndex = 0;
    bool hasPrevious = false;
    double result = centre(m_numBins - 1);
    auto const isFoundAt = [&](std::uint64_t index, std::uint64_t middle) {
        if (index > 0 && middle != current) {
            previous = current;
            previousIndex = index - 1;
            hasPrevious = true;
        }
        current = middle;
        if (!(target < static_cast<double>(current)))
            return false;
        result = centre(index);
        if (hasPrevious) {
            double const w = (static_cast<double>(current) - target) / static_cast<double>(current - previous);
            result = centre(previousIndex) * w + result * (1 - w);
        }
        return true;
    };
    std::uint64_t below = 0;
    std::uint64_t next = 0;
    for (Filled const& bin : m_filled) {
        if (bin.index > next && isFoundAt(next, below))
            return result;
        if (isFoundAt(bin.index, below + (bin.count >> 1)))
            return result;
        below += bin.count;
        next = bin.index + 1;
    }
    if (next < m_numBins)
        isFoundAt(next, below);
    return result;
}

} // namespace qel::math
