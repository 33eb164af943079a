#include "Core/private/Access/OverlapBorder.h"

#include <qel/AlgoBorderInfluence.h>

#include <gtest/gtest.h>

#include <array>

namespace qel::access {
namespace {

std::array<unsigned long, 6> marginsOf(OverlapBorder const& border)
{
    return {border.rowsLower, border.rowsUpper,  border.colsLower,
            border.colsUpper, border.plansLower, border.plansUpper};
}

TEST(OverlapBorderTest, hasNoMarginByDefault)
{
    EXPECT_EQ(marginsOf(OverlapBorder()), (std::array<unsigned long, 6>{0, 0, 0, 0, 0, 0}));
}

TEST(OverlapBorderTest, takesASymmetricalReachAsItIs)
{
    EXPECT_EQ(marginsOf(OverlapBorder(AlgoBorderInfluence(1, 1, 0, 0, 0))),
              (std::array<unsigned long, 6>{1, 1, 1, 1, 0, 0}));
    EXPECT_EQ(marginsOf(OverlapBorder(AlgoBorderInfluence(2, 3, 4, 5, 6))),
              (std::array<unsigned long, 6>{3, 3, 2, 2, 4, 4}));
}

TEST(OverlapBorderTest, crossesLowerAndUpperOfAnAsymmetricalReach)
{
    // Columns, rows, plans, time and spectral series, each negative and then positive.
    AlgoBorderInfluence const influence(1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
    EXPECT_EQ(marginsOf(OverlapBorder(influence)), (std::array<unsigned long, 6>{4, 3, 2, 1, 6, 5}));
}

} // namespace
} // namespace qel::access
