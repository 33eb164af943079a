#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <queue>
#include <vector>

namespace qel::morphology {

/// Hands entries out in the order of their distance, equal distances in the order in which they came. Distances are not
/// negative.
///
/// Entries wait in buckets of nearly the same distance: the leading bits of a float number the buckets, whatever the
/// scale. A bucket is sorted once, when its turn comes. What arrives for it while it is emptied, or is nearer still,
/// waits in a heap beside it, which stays small.
template <class Index> class DistanceQueue
{
public:
    struct Entry
    {
        float distance;
        Index voxel;
        Index point;
    };

    void push(Entry const& entry)
    {
        std::size_t const number = bucketOf(entry.distance);
        if (m_isOpen && number <= m_current) {
            m_late.push({entry, m_lateCount++});
            return;
        }
        if (number >= m_buckets.size())
            m_buckets.resize(number + 1);
        m_buckets[number].push_back(entry);
    }

    bool pop(Entry& entry)
    {
        while (m_next == m_open.size() && m_late.empty())
            if (!openNext())
                return false;
        bool const isSorted = m_next < m_open.size();
        if (isSorted && (m_late.empty() || !(m_late.top().entry.distance < m_open[m_next].distance))) {
            entry = m_open[m_next++];
        } else {
            entry = m_late.top().entry;
            m_late.pop();
        }
        return true;
    }

    /// An entry that is likely to come soon, or null.
    Entry const* upcoming(std::size_t steps) const
    {
        return m_next + steps < m_open.size() ? &m_open[m_next + steps] : nullptr;
    }

private:
    struct Late
    {
        Entry entry;
        std::uint64_t order;
        bool operator<(Late const& other) const // the top of a queue is its largest
        {
            return entry.distance > other.entry.distance ||
                   (entry.distance == other.entry.distance && order > other.order);
        }
    };

    static std::size_t bucketOf(float distance)
    {
        constexpr int bitsBelow = 23 - 9; // 512 buckets from a distance to its double
        std::uint32_t bits;
        std::memcpy(&bits, &distance, sizeof bits);
        return bits >> bitsBelow;
    }

    bool openNext()
    {
        std::vector<Entry>().swap(m_open);
        m_next = 0;
        m_lateCount = 0;
        for (std::size_t number = m_isOpen ? m_current + 1 : 0; number < m_buckets.size(); ++number)
            if (!m_buckets[number].empty()) {
                m_open.swap(m_buckets[number]);
                m_current = number;
                m_isOpen = true;
                auto const isNearer = [](Entry const& a, Entry const& b) { return a.distance < b.distance; };
                if (!std::is_sorted(m_open.begin(), m_open.end(), isNearer))
                    std::stable_sort(m_open.begin(), m_open.end(), isNearer);
                return true;
            }
        return false;
    }

    std::vector<std::vector<Entry>> m_buckets;
    std::vector<Entry> m_open; // the current bucket, sorted
    std::size_t m_next = 0;    // of m_open
    std::priority_queue<Late> m_late;
    std::uint64_t m_lateCount = 0;
    std::size_t m_current = 0;
    bool m_isOpen = false;
};

} // namespace qel::morphology
