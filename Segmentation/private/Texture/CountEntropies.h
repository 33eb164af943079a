#pragma once

#include <cstdint>
#include <vector>

namespace qel::segmentation::details {

/// n log n for counts n, in whole units that are fine enough for doubles.
///
/// An entropy of counts is a sum of these. Counts that come and go change a sum of whole numbers without an error that
/// could grow, in any order: so the sum is that of counts made anew, to the last bit.
class CountEntropies
{
public:
    /// For counts up to `largest`, and sums of counts up to that, too.
    explicit CountEntropies(std::uint64_t largest);

    std::uint64_t largest() const { return m_values.size() - 1; }
    /// n log n.
    std::int64_t operator[](std::uint64_t count) const { return m_values[count]; }
    /// From each count to the next one.
    std::int64_t const* steps() const { return m_steps.data(); }
    /// log 2.
    std::int64_t logOfTwo() const { return m_logOfTwo; }
    /// How much a unit is.
    double unit() const { return m_unit; }

private:
    std::vector<std::int64_t> m_values;
    std::vector<std::int64_t> m_steps;
    std::int64_t m_logOfTwo;
    double m_unit;
};

} // namespace qel::segmentation::details
