#include "Classification/private/NearestOnLine.h"

#include "Classification/private/KMeansScalarGeneric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace qel::test {
namespace {

template <class T> class NearestOnLineTest : public testing::Test
{
protected:
    static std::vector<int> byDistance(std::vector<double> const& centres, std::vector<T> const& voxels)
    {
        std::vector<int> labels(voxels.size());
        for (std::size_t x = 0; x < voxels.size(); x += classification::kMeansChunk) {
            T const* const row = voxels.data() + x;
            std::size_t const count = std::min(classification::kMeansChunk, voxels.size() - x);
            classification::labelNearest(&row, 1, centres.data(), centres.size(), labels.data() + x, count);
        }
        return labels;
    }

    /// Values around each centre, around the middle of each two, and anywhere between.
    static std::vector<T> telling(std::vector<double> const& centres)
    {
        std::vector<T> voxels;
        auto const around = [&](double value) {
            T low = static_cast<T>(value);
            T high = low;
            for (int step = 0; step < 20; ++step) {
                voxels.push_back(low);
                voxels.push_back(high);
                low = std::nextafter(low, -std::numeric_limits<T>::infinity());
                high = std::nextafter(high, std::numeric_limits<T>::infinity());
            }
        };
        std::mt19937 random(7);
        for (double const a : centres) {
            around(a);
            for (double const b : centres) {
                around(a / 2 + b / 2);
                voxels.push_back(static_cast<T>(a + (b - a) * (random() / 4294967296.0)));
                voxels.push_back(static_cast<T>(a + 3 * (b - a)));
            }
        }
        return voxels;
    }

    /// False where limits do not decide.
    static bool expectSame(std::vector<double> const& centres)
    {
        std::vector<T> const voxels = telling(centres);
        classification::NearestOnLine<T> const onLine(centres);
        if (!onLine.holds(voxels.data(), voxels.size()))
            return false;
        std::vector<int> labels(voxels.size());
        onLine.label(voxels.data(), labels.data(), voxels.size());
        std::vector<int> const expected = byDistance(centres, voxels);
        for (std::size_t x = 0; x < voxels.size(); ++x)
            if (labels[x] != expected[x]) {
                ADD_FAILURE() << "voxel " << voxels[x] << ": expected class " << expected[x] << ", got " << labels[x]
                              << " of " << testing::PrintToString(centres);
                break;
            }
        return true;
    }
};

using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(NearestOnLineTest, Reals);

TYPED_TEST(NearestOnLineTest, givesTheClassesThatDistancesGive)
{
    std::mt19937 random(3);
    for (std::size_t classes = 1; classes < 20; ++classes)
        for (double const scale : {1.0, 1e-5, 255.0, 1e9})
            for (int round = 0; round < 5; ++round) {
                std::vector<double> centres;
                while (centres.size() < classes)
                    centres.push_back((random() / 4294967296.0 - 0.3) * scale);
                EXPECT_TRUE(this->expectSame(centres));
            }
}

TYPED_TEST(NearestOnLineTest, givesTiesToTheFirstClass)
{
    for (auto const& centres : std::vector<std::vector<double>>{
             {0, 2}, {2, 0}, {1, 3, 2}, {5, 5, 1}, {1, 5, 5}, {4, 4}, {-1, 1, 0}, {0.25, -0.25, 0.25, 1, -0.25}}) {
        EXPECT_TRUE(this->expectSame(centres));
        std::vector<TypeParam> const middle = {TypeParam((centres[0] + centres[1]) / 2)};
        int label = -1;
        classification::NearestOnLine<TypeParam>(centres).label(middle.data(), &label, 1);
        EXPECT_EQ(label, this->byDistance(centres, middle)[0]);
    }
}

TYPED_TEST(NearestOnLineTest, separatesCentresThatVoxelsCannotTellApart)
{
    EXPECT_TRUE(this->expectSame({1000.0, 1000.0 + 1e-9}));
    EXPECT_TRUE(this->expectSame({1.0 + 1e-12, 1.0}));
    EXPECT_TRUE(this->expectSame({-3e-20, 3e-20, 0}));
}

TYPED_TEST(NearestOnLineTest, leavesToDistancesWhatRoundingMayDecide)
{
    using T = TypeParam;
    classification::NearestOnLine<T> const onLine({1, 2});
    T const infinity = std::numeric_limits<T>::infinity();
    T const nan = std::numeric_limits<T>::quiet_NaN();
    for (T const outside : {nan, infinity, -infinity, T(1e16), T(-1e16)}) {
        T const row[] = {1, 1, 1, 1, 1, 1, 1, outside, 1};
        EXPECT_FALSE(onLine.holds(row, 9)) << outside;
        EXPECT_TRUE(onLine.holds(row, 7));
        EXPECT_TRUE(onLine.holds(row + 8, 1));
    }
    T const row[] = {1};
    for (auto const& centres :
         std::vector<std::vector<double>>{{NAN}, {1, NAN}, {1, INFINITY}, {1, 1e31}, {0, 1e-101}, {0, 1, 1e20}})
        EXPECT_FALSE(classification::NearestOnLine<T>(centres).holds(row, 1)) << centres.back();
}

/// A row of one component, as the classifier asks for it.
struct OneRow
{
    std::vector<float> voxels;

    std::size_t rowLength() const { return voxels.size(); }
    float const* rowData(std::size_t) const { return voxels.data(); }
};

TEST(ClassifierTest, asksDistancesWhereLimitsDoNotDecide)
{
    OneRow row{std::vector<float>(1100, 1.75f)};
    float const infinity = std::numeric_limits<float>::infinity();
    row.voxels[3] = std::numeric_limits<float>::quiet_NaN();
    row.voxels[600] = infinity;
    row.voxels[601] = 1e30f;
    row.voxels[1099] = 1.0f;
    std::vector<classification::Center> centers(3);
    centers[0].centre = {9.0};
    centers[1].centre = {1.0};
    centers[2].centre = {2.0};
    std::vector<int> labels;
    classification::Classifier<float>(centers).forEachChunk(
        row, [&](int const* chunk, std::vector<float const*> const& rows, std::size_t first, std::size_t count) {
            EXPECT_EQ(first, labels.size());
            EXPECT_EQ(rows[0], row.voxels.data() + first);
            labels.insert(labels.end(), chunk, chunk + count);
        });
    std::vector<int> expected(1100, 2);
    expected[3] = expected[600] = expected[601] = 0; // no distance is less than another
    expected[1099] = 1;
    EXPECT_EQ(labels, expected);
}

} // namespace
} // namespace qel::test
