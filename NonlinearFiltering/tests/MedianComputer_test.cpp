#include "NonlinearFiltering/private/MedianFilter/MedianComputer.h"
#include "NonlinearFiltering/tests/MedianModel.h"

#include <random>

namespace qel::test {
namespace {

using nonlinear_filtering::MedianComputer;
using nonlinear_filtering::MedianKey;
using nonlinear_filtering::details::MedianComputerInfo;
using nonlinear_filtering::details::rangeOf;

template <class T> T upperMedian(std::vector<T> values)
{
    std::sort(values.begin(), values.end(), comesBefore<T>);
    return values[values.size() / 2];
}

/// Moves voxels through a computer as a window would, and asks for the median after some of the moves only.
template <class T, bool useHistogram> void expectMedians(std::vector<T> const& stock, unsigned long size)
{
    auto const [low, high] = std::minmax_element(stock.begin(), stock.end(), comesBefore<T>);
    MedianComputerInfo const info{useHistogram, Scalar(*low), Scalar(*high)};
    MedianComputer<T, useHistogram> computer(info, size);
    std::mt19937 random(static_cast<unsigned>(size));
    for (int round = 0; round < 3; ++round) {
        std::vector<T> window;
        computer.clear();
        for (unsigned long i = 0; i < size; ++i) {
            window.push_back(stock[random() % stock.size()]);
            computer.add(&window.back());
        }
        for (int move = 0; move < 60; ++move) {
            if (move % 3 != 1) {
                ASSERT_TRUE(sameValue(computer.median(), upperMedian(window)));
            }
            std::vector<T> const before = window;
            std::vector<T const*> leaving, entering;
            for (unsigned long i = random() % size; i < size; i += 2) {
                window[i] = stock[random() % stock.size()];
                leaving.push_back(&before[i]);
                entering.push_back(&window[i]);
            }
            computer.update(entering.data(), leaving.data(), entering.size());
        }
    }
}

TEST(MedianComputerTest, findsTheUpperMedianWhateverCameAndWent)
{
    forEachVoxelType([&]<class T>() {
        std::vector<T> const near = nearVoxels<T>(Shape{200}, 1).voxels;
        std::vector<T> const far = randomPicture<T>(Shape{200}, 2).voxels;
        for (unsigned long const size : {1ul, 2ul, 4ul, 5ul, 9ul, 50ul}) {
            expectMedians<T, false>(near, size);
            expectMedians<T, false>(far, size);
            if constexpr (!std::is_floating_point_v<T>)
                expectMedians<T, true>(near, size);
            if constexpr (sizeof(T) <= 2)
                expectMedians<T, true>(far, size);
        }
    });
}

TEST(MedianComputerTest, countsFromAnyMinimum)
{
    auto const around = []<class T>(T low) {
        expectMedians<T, true>({low, T(low + 1), T(low + 7), T(low + 9), T(low + 3)}, 5);
    };
    around(std::numeric_limits<long>::min());
    around(std::numeric_limits<long>::max() - 9);
    around(-4l);
    around(std::numeric_limits<unsigned long>::max() - 9);
    around(std::numeric_limits<int>::min());
    around(std::numeric_limits<unsigned int>::max() - 9);
    around(static_cast<signed char>(-128));
}

TEST(MedianComputerTest, measuresRangesThatNoSignedNumberHolds)
{
    EXPECT_EQ(rangeOf(Scalar(std::numeric_limits<long>::min()), Scalar(std::numeric_limits<long>::max())), ~0ul);
    EXPECT_EQ(rangeOf(Scalar(-5l), Scalar(7l)), 12u);
    EXPECT_EQ(rangeOf(Scalar(0ul), Scalar(~0ul)), ~0ul);
}

template <class T, class Bits> void expectOrder()
{
    T const infinity = std::numeric_limits<T>::infinity();
    T const nan = std::numeric_limits<T>::quiet_NaN();
    T const least = std::numeric_limits<T>::denorm_min();
    std::vector<T> const ascending = {
        -infinity, std::numeric_limits<T>::lowest(), T(-1.5),  -least, T(-0.0), T(0.0), least,
        T(1),      std::numeric_limits<T>::max(),    infinity, nan};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        auto const key = MedianKey<T>::of(ascending[i]);
        if (i > 0) {
            EXPECT_LT(MedianKey<T>::of(ascending[i - 1]), key) << i;
        }
        EXPECT_EQ(std::bit_cast<Bits>(MedianKey<T>::voxelOf(key)), std::bit_cast<Bits>(ascending[i])) << i;
    }
    EXPECT_EQ(MedianKey<T>::of(-nan), MedianKey<T>::of(nan));
    EXPECT_LT(MedianKey<T>::of(infinity), MedianKey<T>::of(std::bit_cast<T>(std::bit_cast<Bits>(-infinity) + 1)));
}

TEST(MedianKeyTest, ordersRealsAndPutsNaNBehindThem)
{
    expectOrder<float, unsigned int>();
    expectOrder<double, unsigned long>();
    EXPECT_EQ(MedianKey<short>::of(-7), -7);
}

} // namespace
} // namespace qel::test
