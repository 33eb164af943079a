#include "Geometry/private/EdgeQueue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <queue>
#include <random>
#include <tuple>

namespace qel::test {
namespace {

using geometry::EdgeQueue;

/// One heap for all, by weight and age.
class PlainQueue
{
public:
    void push(float weight, std::uint64_t content) { m_heap.emplace(weight, --m_age, content); }
    float topWeight() const { return std::get<0>(m_heap.top()); }
    std::uint64_t topContent() const { return std::get<2>(m_heap.top()); }
    void pop() { m_heap.pop(); }
    bool empty() const { return m_heap.empty(); }

private:
    std::priority_queue<std::tuple<float, long, std::uint64_t>> m_heap;
    long m_age = 0;
};

class EdgeQueueTest : public testing::Test
{
protected:
    void push(float weight)
    {
        queue.push(weight, m_next);
        plain.push(weight, m_next++);
    }
    void pop()
    {
        ASSERT_EQ(queue.empty(), plain.empty());
        ASSERT_EQ(queue.topWeight(), plain.topWeight());
        ASSERT_EQ(queue.topContent(), plain.topContent());
        queue.pop();
        plain.pop();
    }
    void popAll()
    {
        while (!plain.empty() && !HasFatalFailure())
            pop();
        EXPECT_TRUE(queue.empty());
    }

    EdgeQueue queue;
    PlainQueue plain;

private:
    std::uint64_t m_next = 0;
};

TEST_F(EdgeQueueTest, isEmptyAtFirst) { EXPECT_TRUE(queue.empty()); }

TEST_F(EdgeQueueTest, givesTheGreatestFirstAndTheOldestOfEqualOnes)
{
    for (float weight : {1.0F, 2.0F, 1.0F, 2.0F, 0.5F, 2.0F})
        push(weight);
    popAll();
}

TEST_F(EdgeQueueTest, tellsWeightsApartByEveryBit)
{
    float const infinity = std::numeric_limits<float>::infinity();
    float weight = 1;
    for (int i = 0; i < 300; ++i) {
        push(weight);
        weight = std::nextafterf(weight, i % 3 ? infinity : 0.0F);
    }
    for (float extreme : {infinity, std::numeric_limits<float>::max(), std::numeric_limits<float>::min(),
                          std::numeric_limits<float>::denorm_min()})
        push(extreme);
    popAll();
}

TEST_F(EdgeQueueTest, keepsItsOrderWhileWeightsRiseAndFall)
{
    std::mt19937 random(1);
    for (int round = 0; round < 3; ++round) {
        // Few and many different weights, near each other and far apart.
        for (int range : {1, 3, 1000, 1 << 24})
            for (int i = 0; i < 30000; ++i) {
                if (random() % 5 < 3) {
                    push(static_cast<float>(1 + random() % static_cast<unsigned int>(range)) / 64);
                } else if (!plain.empty()) {
                    ASSERT_NO_FATAL_FAILURE(pop());
                }
            }
        popAll();
    }
}

TEST_F(EdgeQueueTest, letsTheContentOfItsTopChange)
{
    queue.push(2, 20);
    queue.push(1, 10);
    queue.push(2, 21);
    EXPECT_EQ(queue.topContent(), 20U);
    ++queue.topContent();
    queue.push(2, 22);
    EXPECT_EQ(queue.topContent(), 21U);
    queue.pop();
    EXPECT_EQ(queue.topContent(), 21U);
    queue.pop();
    EXPECT_EQ(queue.topContent(), 22U);
}

} // namespace
} // namespace qel::test
