#include "Morphology/private/DistanceQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace qel::test {
namespace {

using morphology::DistanceQueue;

/// Fills and empties a queue beside a sorted list; `distanceAfter(last)` is that of the next entry.
template <class Index, class DistanceAfter> void expectTheOrderOfASortedList(DistanceAfter const& distanceAfter)
{
    using Entry = typename DistanceQueue<Index>::Entry;
    DistanceQueue<Index> queue;
    std::multimap<float, Index> list; // equal keys stand in the order in which they came
    std::mt19937 random(3);
    float last = 0;
    Index number = 0;
    auto const push = [&] {
        float const distance = distanceAfter(last, random);
        queue.push({distance, number, static_cast<Index>(number + 1)});
        list.emplace(distance, number);
        ++number;
    };
    for (int i = 0; i < 500; ++i)
        push();
    while (!list.empty()) {
        Entry entry;
        ASSERT_TRUE(queue.pop(entry));
        ASSERT_EQ(entry.distance, list.begin()->first);
        ASSERT_EQ(entry.voxel, list.begin()->second);
        ASSERT_EQ(entry.point, static_cast<Index>(entry.voxel + 1));
        list.erase(list.begin());
        last = entry.distance;
        for (unsigned i = 0; i < random() % 3 && number < 5000; ++i)
            push();
    }
    Entry entry;
    EXPECT_FALSE(queue.pop(entry));
}

TEST(DistanceQueueTest, handsOutByDistanceAndEqualOnesInOrder)
{
    // Few values, which meet again and again; nearer ones than those that are out already; and a wide range.
    auto const few = [](float last, std::mt19937& random) { return last + static_cast<float>(random() % 3) / 1024; };
    auto const back = [](float last, std::mt19937& random) {
        return std::max(0.0f, last + static_cast<float>(random() % 5) / 8 - 0.25f);
    };
    auto const wide = [](float, std::mt19937& random) {
        return std::ldexp(static_cast<float>(random() % 16), static_cast<int>(random() % 200) - 130);
    };
    expectTheOrderOfASortedList<std::uint32_t>(few);
    expectTheOrderOfASortedList<std::uint64_t>(few);
    expectTheOrderOfASortedList<std::uint32_t>(back);
    expectTheOrderOfASortedList<std::uint32_t>(wide);
}

TEST(DistanceQueueTest, takesTheEndsOfTheRange)
{
    DistanceQueue<std::uint32_t> queue;
    float const most = std::numeric_limits<float>::max();
    queue.push({most, 1, 0});
    queue.push({0.0f, 2, 0});
    queue.push({std::numeric_limits<float>::infinity(), 3, 0});
    queue.push({std::numeric_limits<float>::denorm_min(), 4, 0});
    DistanceQueue<std::uint32_t>::Entry entry;
    for (std::uint32_t const voxel : {2u, 4u, 1u, 3u}) {
        ASSERT_TRUE(queue.pop(entry));
        EXPECT_EQ(entry.voxel, voxel);
    }
    EXPECT_FALSE(queue.pop(entry));
}

} // namespace
} // namespace qel::test
