#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace qel::geometry {

/// Gives out entries by weight, the greatest first, and among equal ones the oldest first.
///
/// Millions may wait, and a heap of millions waits for memory at each step. But the leading bits of a weight number a
/// bucket, of which only the highest needs an order: it is a heap that the caches hold. Others become one when their
/// turn comes. Weights go up and down on the way, so a bucket may be the highest several times.
class EdgeQueue
{
public:
    EdgeQueue()
        : m_buckets(numOfBuckets)
        , m_words(numOfBuckets / 64)
        , m_summary(m_words.size() / 64)
    {}

    bool empty() const { return m_top == none; }

    /// `weight` is above 0.
    void push(float weight, std::uint64_t content)
    {
        auto const bits = std::bit_cast<std::uint32_t>(weight);
        std::size_t const number = bits >> 16;
        Bucket& bucket = m_buckets[number];
        if (bucket.entries.empty())
            mark(number);
        // The rest of the weight above what is left of 2^48 tickets.
        std::uint64_t const ticket = m_nextTicket++;
        bucket.entries.push_back({(std::uint64_t(bits & 0xFFFF) << 48) | (lastTicket - ticket), content});
        if (bucket.isHeap)
            std::push_heap(bucket.entries.begin(), bucket.entries.end());
        if (m_top == none || number > m_top)
            m_top = number;
    }

    float topWeight() { return std::bit_cast<float>(static_cast<std::uint32_t>(m_top << 16 | top().key >> 48)); }
    /// May be changed; the entry keeps its place.
    std::uint64_t& topContent() { return top().content; }

    void pop()
    {
        Bucket& bucket = m_buckets[m_top];
        top(); // makes it a heap
        std::pop_heap(bucket.entries.begin(), bucket.entries.end());
        bucket.entries.pop_back();
        if (!bucket.entries.empty())
            return;
        if (bucket.entries.capacity() > 4096)
            bucket.entries = {};
        bucket.isHeap = false;
        unmark(m_top);
        if (empty())
            m_nextTicket = 0;
    }

private:
    struct Entry
    {
        std::uint64_t key;
        std::uint64_t content;

        bool operator<(Entry const& other) const { return key < other.key; }
    };
    struct Bucket
    {
        std::vector<Entry> entries;
        bool isHeap = false;
    };

    Entry& top()
    {
        Bucket& bucket = m_buckets[m_top];
        if (!bucket.isHeap) {
            std::make_heap(bucket.entries.begin(), bucket.entries.end());
            bucket.isHeap = true;
        }
        return bucket.entries.front();
    }

    // A bit for each bucket with entries, and one for each word with bits.
    void mark(std::size_t number)
    {
        m_words[number / 64] |= std::uint64_t(1) << number % 64;
        m_summary[number / 4096] |= std::uint64_t(1) << number / 64 % 64;
    }
    void unmark(std::size_t number)
    {
        m_words[number / 64] &= ~(std::uint64_t(1) << number % 64);
        if (m_words[number / 64] == 0)
            m_summary[number / 4096] &= ~(std::uint64_t(1) << number / 64 % 64);
        m_top = none;
        for (std::size_t i = number / 4096 + 1; i-- > 0 && m_top == none;)
            if (m_summary[i] != 0) {
                std::size_t const word = i * 64 + highest(m_summary[i]);
                m_top = word * 64 + highest(m_words[word]);
            }
    }
    static std::size_t highest(std::uint64_t bits) { return 63U - static_cast<unsigned int>(std::countl_zero(bits)); }

    static constexpr std::size_t numOfBuckets = std::size_t(1) << 15; // the sign is that of all
    static constexpr std::size_t none = numOfBuckets;
    static constexpr std::uint64_t lastTicket = (std::uint64_t(1) << 48) - 1;

    std::vector<Bucket> m_buckets;
    std::vector<std::uint64_t> m_words;
    std::vector<std::uint64_t> m_summary;
    std::size_t m_top = none;
    std::uint64_t m_nextTicket = 0;
};

} // namespace qel::geometry
