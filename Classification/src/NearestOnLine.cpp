#include "Classification/private/NearestOnLine.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <type_traits>

namespace qel::classification {

namespace {

template <class T> using BitsOf = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;

/// Whole numbers in the order of the reals, and back: halves of a range of them are halves of a list of all reals.
template <class T> BitsOf<T> orderOf(T value)
{
    auto const bits = std::bit_cast<BitsOf<T>>(value);
    return bits < 0 ? std::numeric_limits<BitsOf<T>>::min() - bits : bits;
}
template <class T> T realAt(BitsOf<T> order)
{
    return std::bit_cast<T>(order < 0 ? static_cast<BitsOf<T>>(std::numeric_limits<BitsOf<T>>::min() - order) : order);
}

template <class T> bool isNearerToUpper(T voxel, double lower, double upper, bool upperTakesTies)
{
    double const toLower = static_cast<double>(voxel) - lower;
    double const toUpper = static_cast<double>(voxel) - upper;
    double const lowerSquare = toLower * toLower;
    double const upperSquare = toUpper * toUpper;
    return upperSquare < lowerSquare || (upperTakesTies && upperSquare == lowerSquare);
}

/// The last value that is nearer to the lower of two centres.
template <class T> T limitBetween(double lower, double upper, bool upperTakesTies)
{
    // Both were rounded, at most beyond their centre: by less than where `holds` ends.
    BitsOf<T> below = orderOf(static_cast<T>(lower));
    BitsOf<T> above = orderOf(static_cast<T>(upper));
    // Where one value of T stands for both.
    while (isNearerToUpper(realAt<T>(below), lower, upper, upperTakesTies))
        --below;
    while (!isNearerToUpper(realAt<T>(above), lower, upper, upperTakesTies))
        ++above;
    // Rounded towards the first; their difference may not fit.
    for (BitsOf<T> middle; (middle = std::midpoint(below, above)) != below;)
        (isNearerToUpper(realAt<T>(middle), lower, upper, upperTakesTies) ? above : below) = middle;
    return realAt<T>(below);
}

} // namespace

template <class T>
NearestOnLine<T>::NearestOnLine(std::vector<double> const& centres)
    : m_isInOrder(true)
    , m_lowest(1)
    , m_highest(0)
{
    if (!std::ranges::all_of(centres, [](double centre) { return std::abs(centre) < 1e30; }))
        return; // holds nowhere
    m_classes.resize(centres.size());
    std::iota(m_classes.begin(), m_classes.end(), 0);
    auto const centreOf = [&](int index) { return centres[static_cast<std::size_t>(index)]; };
    std::ranges::stable_sort(m_classes, {}, centreOf);
    // Of equal centres only the first class takes voxels.
    auto const isOfEqualCentre = [&](int a, int b) { return centreOf(a) == centreOf(b); };
    m_classes.erase(std::unique(m_classes.begin(), m_classes.end(), isOfEqualCentre), m_classes.end());
    m_isInOrder = std::ranges::is_sorted(m_classes) && m_classes.back() == static_cast<int>(m_classes.size()) - 1;

    double leastGap = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < m_classes.size(); ++i)
        leastGap = std::min(leastGap, centreOf(m_classes[i]) - centreOf(m_classes[i - 1]));
    // Distances a and a + gap differ in their last bits at least, and so do their squares.
    double const reach = std::min(leastGap * 0x1p+48, 1e35);
    double const lowest = centreOf(m_classes.front());
    double const highest = centreOf(m_classes.back());
    if (leastGap < 1e-100 || highest - lowest > reach / 2)
        return;
    m_lowest = static_cast<T>(lowest - reach / 2);
    m_highest = static_cast<T>(highest + reach / 2);
    for (std::size_t i = 1; i < m_classes.size(); ++i)
        m_limits.push_back(
            limitBetween<T>(centreOf(m_classes[i - 1]), centreOf(m_classes[i]), m_classes[i] < m_classes[i - 1]));
}

template <class T> bool NearestOnLine<T>::holds(T const* row, std::size_t count) const
{
    // As numbers as wide as the voxels, so that all lanes are.
    BitsOf<T> all = 1;
    for (std::size_t x = 0; x < count; ++x)
        all &= static_cast<BitsOf<T>>(row[x] >= m_lowest) & static_cast<BitsOf<T>>(row[x] <= m_highest);
    return all != 0;
}

template <class T>
void NearestOnLine<T>::label(T const* __restrict row, int* __restrict labels, std::size_t count) const
{
    std::fill_n(labels, count, 0);
    for (T const limit : m_limits)
        for (std::size_t x = 0; x < count; ++x)
            labels[x] += row[x] > limit;
    if (!m_isInOrder)
        for (std::size_t x = 0; x < count; ++x)
            labels[x] = m_classes[static_cast<std::size_t>(labels[x])];
}

template class NearestOnLine<float>;
template class NearestOnLine<double>;

} // namespace qel::classification
