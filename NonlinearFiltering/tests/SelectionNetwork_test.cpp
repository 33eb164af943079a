#include "NonlinearFiltering/private/MedianFilter/SelectionNetwork.h"

#include "Core/private/Kernel/OffsetCollections.h"
#include "Core/tests/Support/Support.h"
#include "NonlinearFiltering/private/MedianFilter/MedianNetworkKernel.h"

#include <qel/devices/Cpu.h>

#include <algorithm>
#include <random>

namespace qel::test {
namespace {

using kernel::Offset2D;
using kernel::Offset3D;
using namespace nonlinear_filtering;

std::vector<Offset3D> inSpace(std::vector<Offset2D> const& window)
{
    std::vector<Offset3D> offsets;
    for (Offset2D const& offset : window)
        offsets.push_back({offset.x, offset.y, 0});
    return offsets;
}

std::vector<std::vector<Offset3D>> windows()
{
    std::vector<std::vector<Offset3D>> all = {inSpace({{0, 0}}), inSpace({{0, 0}, {1, 0}}),
                                              inSpace({{-3, 0}, {0, 2}, {2, -1}, {2, 0}}),
                                              inSpace({{1, -1}, {1, 0}, {1, 4}}),
                                              // One offset twice, and a window beside its centre.
                                              inSpace({{5, 2}, {5, 2}, {6, 2}, {7, 3}, {8, 2}})};
    for (unsigned long radius = 1; radius < 6; ++radius) {
        all.push_back(inSpace(kernel::generateSquareOffset2DCollection(radius)));
        all.push_back(inSpace(kernel::generateDiskOffset2DCollection(radius)));
    }
    for (unsigned long radius = 1; radius < 3; ++radius) {
        all.push_back(kernel::generateCubeOffset3DCollection(radius));
        all.push_back(kernel::generateSphereOffset3DCollection(radius));
    }
    return all;
}

constexpr unsigned long lanes = 64;
constexpr unsigned long margin = 16;

/// Rows of the image, the temporaries, and the pointers to them.
template <class T> class Registers
{
public:
    Registers(SelectionNetwork const& network, std::mt19937& random, int values)
    {
        unsigned long const room = lanes + network.excess() + networkPacket<T>;
        for (std::size_t i = 0; i < network.inputs().size(); ++i) {
            m_rows.emplace_back(room + 2 * margin);
            for (T& key : m_rows.back())
                key = values == 0 ? static_cast<T>(random()) : static_cast<T>(random() % static_cast<unsigned>(values));
        }
        for (std::size_t i = 0; i < network.numOfTemporaries(); ++i)
            m_rows.emplace_back(room);
        for (std::size_t i = 0; i < m_rows.size(); ++i)
            pointers.push_back(m_rows[i].data() + (i < network.inputs().size() ? margin : 0));
    }
    std::vector<T*> pointers;

private:
    std::vector<std::vector<T>> m_rows;
};

template <class T>
std::vector<T> windowAt(SelectionNetwork const& network, std::vector<Offset3D> const& window,
                        Registers<T> const& registers, long lane)
{
    std::vector<T> keys;
    for (Offset3D const& offset : window)
        for (std::size_t i = 0; i < network.inputs().size(); ++i)
            if (network.inputs()[i].row == offset.y && network.inputs()[i].plan == offset.z)
                keys.push_back(registers.pointers[i][lane + offset.x]);
    return keys;
}

template <class T> void expectMedians(void (*kernel)(NetworkStep const*, unsigned long, T* const*, unsigned long))
{
    std::mt19937 random(7);
    for (std::vector<Offset3D> const& window : windows()) {
        SelectionNetwork const network(window);
        for (int const values : {0, 2, 2, 10}) { // of two values, each order of a window is a case of its own
            Registers<T> const registers(network, random, values);
            kernel(network.steps().data(), network.steps().size(), registers.pointers.data(), lanes);
            T const* const medians = registers.pointers[network.result()] + network.resultLane();
            for (long lane = 0; lane < static_cast<long>(lanes); ++lane) {
                std::vector<T> keys = windowAt(network, window, registers, lane);
                ASSERT_EQ(keys.size(), window.size());
                std::nth_element(keys.begin(), keys.begin() + static_cast<long>(keys.size() / 2), keys.end());
                ASSERT_EQ(medians[lane], keys[keys.size() / 2]) << "of " << window.size() << " at " << lane;
            }
        }
    }
}

template <class T> void expectMediansOf9(void (*kernel)(T const*, T const*, T const*, T*, unsigned long))
{
    std::mt19937 random(8);
    for (unsigned long const count : {1ul, 15ul, 64ul, 67ul}) {
        std::vector<T> rows[3];
        for (std::vector<T>& row : rows)
            for (unsigned long x = 0; x < count + 2; ++x)
                row.push_back(static_cast<T>(count == 64 ? random() % 2 : random()));
        std::vector<T> medians(count + 1, T(77));
        kernel(rows[0].data() + 1, rows[1].data() + 1, rows[2].data() + 1, medians.data(), count);
        for (unsigned long x = 0; x < count; ++x) {
            std::vector<T> keys;
            for (std::vector<T> const& row : rows)
                keys.insert(keys.end(), row.begin() + static_cast<long>(x), row.begin() + static_cast<long>(x + 3));
            std::sort(keys.begin(), keys.end());
            ASSERT_EQ(medians[x], keys[4]);
        }
        EXPECT_EQ(medians[count], T(77));
    }
}

template <class Arch> void expectKernels()
{
    auto const ofType = []<class T>(T) {
        expectMedians<T>(runNetwork<Arch, T>);
        expectMediansOf9<T>(medianOf9<Arch, T>);
    };
    ofType(static_cast<unsigned char>(0));
    ofType(static_cast<unsigned short>(0));
    ofType(0u);
    ofType(0ul);
    ofType(static_cast<signed char>(0));
    ofType(static_cast<short>(0));
    ofType(0);
    ofType(0l);
}

TEST(SelectionNetworkTest, leadsToTheMedianOfEveryLane) { expectKernels<network_baseline>(); }

TEST(SelectionNetworkTest, leadsToTheMedianWithSse)
{
    if (devices::Cpu::getDevice().getSSELevel() >= 65)
        expectKernels<network_sse4_1>();
}

TEST(SelectionNetworkTest, leadsToTheMedianWithAvx2)
{
    if (devices::Cpu::getDevice().getAVXLevel() >= 2)
        expectKernels<network_avx2>();
}

TEST(SelectionNetworkTest, sharesColumnsAndDropsWhatCannotBeTheMedian)
{
    auto const stepsOf = [](unsigned long radius) {
        return SelectionNetwork(kernel::generateSquareOffset2DCollection(radius)).steps().size();
    };
    // A network for each window alone would sort 9, 25 and 49 keys, with 19, 99 and more than 200 comparisons.
    EXPECT_LE(stepsOf(1), 15u);
    EXPECT_LE(stepsOf(2), 57u);
    EXPECT_LE(stepsOf(3), 171u);
    EXPECT_TRUE(SelectionNetwork(std::vector<Offset2D>{{0, 0}}).steps().empty());
}

} // namespace
} // namespace qel::test
