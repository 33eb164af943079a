#pragma once

#include "NonlinearFiltering/private/MedianFilter/MedianComputerInfo.h"
#include "NonlinearFiltering/private/MedianFilter/MedianKey.h"

#include <qel/RealToIntConvertType.h>

#include <algorithm>
#include <vector>

namespace qel::nonlinear_filtering {

/// Keeps the voxels under a window, for a sliding window processor, and finds their median: of N voxels that with index
/// N / 2 in ascending order, which for an even N is the upper one of the middle two.
template <class T, bool useHistogram> class MedianComputer;

/// By a counter for each value from the minimum of the image to its maximum.
///
/// The median of the next window is near that of the last one: a pointer walks up and down from there, with the number
/// of voxels below it, instead of a scan from the lowest counter on.
template <class T> class MedianComputer<T, true>
{
public:
    MedianComputer(details::MedianComputerInfo const& info, unsigned long numOfVoxels)
        : MedianComputer(info.minimum.asUInt64(FLOOR), details::rangeOf(info.minimum, info.maximum), numOfVoxels)
    {}
    /// All values are from `minimum`, seen as an unsigned number, to `range` more.
    MedianComputer(unsigned long minimum, unsigned long range, unsigned long numOfVoxels)
        : m_counters(range + 1)
        , m_minimum(minimum)
        , m_rank(numOfVoxels / 2)
    {}

    void clear()
    {
        std::fill(m_counters.begin(), m_counters.end(), 0u);
        m_below = 0;
    }
    void add(T const* voxel)
    {
        unsigned long const bin = binOf(*voxel);
        ++m_counters[bin];
        m_below += bin < m_median;
    }
    void update(T const* const* entering, T const* const* leaving, unsigned long count)
    {
        unsigned int* const counters = m_counters.data();
        unsigned long const median = m_median;
        unsigned long below = m_below;
        for (unsigned long i = 0; i < count; ++i) {
            unsigned long const in = binOf(*entering[i]);
            unsigned long const out = binOf(*leaving[i]);
            ++counters[in];
            --counters[out];
            below += in < median;
            below -= out < median;
        }
        m_below = below;
    }

    T median()
    {
        while (m_below > m_rank)
            m_below -= m_counters[--m_median];
        while (m_below + m_counters[m_median] <= m_rank)
            m_below += m_counters[m_median++];
        return static_cast<T>(m_minimum + m_median);
    }

private:
    /// Modulo 2^64, so that the counters of negative values too begin at 0.
    unsigned long binOf(T voxel) const { return static_cast<unsigned long>(voxel) - m_minimum; }

    std::vector<unsigned int> m_counters;
    unsigned long m_minimum;
    unsigned long m_rank;
    unsigned long m_median = 0; // a bin
    unsigned long m_below = 0;  // voxels in the bins before that one
};

/// By a list of the window's values, which a selection leaves partly ordered: what is greater than the median stands
/// behind it, so that a value that leaves is sought on its side of the median alone.
template <class T> class MedianComputer<T, false>
{
public:
    using Key = typename MedianKey<T>::Type;

    MedianComputer(details::MedianComputerInfo const&, unsigned long numOfVoxels)
        : m_rank(numOfVoxels / 2)
    {
        m_keys.reserve(numOfVoxels);
    }

    void clear()
    {
        m_keys.clear();
        m_isSelected = false;
    }
    void add(T const* voxel) { m_keys.push_back(MedianKey<T>::of(*voxel)); }
    void update(T const* const* entering, T const* const* leaving, unsigned long count)
    {
        median();
        Key const middle = m_keys[m_rank];
        // What enters meanwhile stands on any side: whoever is not found behind the median is sought from the begin on.
        for (unsigned long i = 0; i < count; ++i) {
            Key const left = MedianKey<T>::of(*leaving[i]);
            auto const behind = m_keys.begin() + static_cast<long>(m_rank);
            auto found = left > middle ? std::find(behind, m_keys.end(), left) : m_keys.end();
            if (found == m_keys.end())
                found = std::find(m_keys.begin(), m_keys.end(), left);
            *found = MedianKey<T>::of(*entering[i]);
        }
        m_isSelected = false;
    }

    T median()
    {
        if (!m_isSelected)
            std::nth_element(m_keys.begin(), m_keys.begin() + static_cast<long>(m_rank), m_keys.end());
        m_isSelected = true;
        return MedianKey<T>::voxelOf(m_keys[m_rank]);
    }

private:
    std::vector<Key> m_keys;
    unsigned long m_rank;
    bool m_isSelected = false;
};

} // namespace qel::nonlinear_filtering
