#pragma once

#include <cstdint>

namespace qel::segmentation::details {

/// How grey levels become the rows and columns of a co-occurrence matrix.
///
/// Levels below the range are in the first bin, those above it in the last one; NaN is in the first one.
class GreyLevelBins
{
public:
    using Bin = std::uint16_t;
    static constexpr unsigned long mostBins = 65536;

    /// No bins, as for a range whose minimum is above its maximum.
    GreyLevelBins() = default;
    /// Throws InvalidCall where the bin size is not above 0 or the range is not finite, MemoryError where there would
    /// be more than `mostBins` bins.
    GreyLevelBins(double min, double max, double binSize);

    unsigned long size() const { return m_size; }
    double min() const { return m_min; }
    double max() const { return m_max; }
    double binSize() const { return m_binSize; }

    /// There must be bins.
    Bin binOf(double value) const
    {
        double const last = static_cast<double>(m_size - 1);
        double place = (value - m_min) / m_binSize;
        place = place < last ? place : last;
        place = value >= m_max ? last : place;
        place = value >= m_min ? place : 0; // NaN as well
        return static_cast<Bin>(static_cast<int>(place));
    }

private:
    double m_min = 0;
    double m_max = -1;
    double m_binSize = 0;
    unsigned long m_size = 0;
};

} // namespace qel::segmentation::details
