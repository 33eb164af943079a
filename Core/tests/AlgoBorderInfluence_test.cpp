#include <qel/AlgoBorderInfluence.h>

#include <gtest/gtest.h>

#include <type_traits>

#include <qel/Exception.h>

#include "Core/tests/Support/Expect.h"

using namespace qel;

static_assert(!std::is_default_constructible_v<AlgoBorderInfluence>);
static_assert(std::is_constructible_v<AlgoBorderInfluence, int, int, int, int, int>);
static_assert(std::is_constructible_v<AlgoBorderInfluence, int, int, int, int, int, int, int, int, int, int>);
static_assert(!std::is_constructible_v<AlgoBorderInfluence, int, int, int, int, int, int>);
static_assert(std::is_copy_constructible_v<AlgoBorderInfluence>);

TEST(AlgoBorderInfluence, usesOneCountForBothDirectionsOfAnAxis)
{
    AlgoBorderInfluence const influence(1, 2, 3, 4, 5);
    for (int direction = 0; direction < 10; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), 1ul + direction / 2);
}

TEST(AlgoBorderInfluence, takesTenCountsInDirectionOrder)
{
    AlgoBorderInfluence const influence(10, 11, 12, 13, 14, 15, 16, 17, 18, ~0ul);
    for (int direction = 0; direction < 9; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), 10ul + direction);
    EXPECT_EQ(influence.getNumOfVoxels(SPECTRAL_SERIES_POSITIVE), ~0ul);
}

TEST(AlgoBorderInfluence, changesOneDirection)
{
    AlgoBorderInfluence influence(0, 0, 0, 0, 0);
    influence.setNumOfVoxels(ROWS_POSITIVE, 9);
    for (int direction = 0; direction < 10; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction == ROWS_POSITIVE ? 9ul : 0ul);
}

TEST(AlgoBorderInfluence, refusesADirectionGreaterThanTen)
{
    AlgoBorderInfluence influence(1, 1, 1, 1, 1);
    for (int direction : {11, 12, 1000, -1})
        EXPECT_QEL_WHAT(influence.setNumOfVoxels(static_cast<DirectionTypes>(direction), 5), BadIndex,
                        "Bad index :\n#1 Error : Invalid direction. \n");
    try {
        influence.setNumOfVoxels(static_cast<DirectionTypes>(11), 5);
    } catch (BadIndex const& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/src/AlgoBorderInfluence");
    }
}

TEST(AlgoBorderInfluence, letsTheDirectionTenPassWithoutAnyEffectOnTheOthers)
{
    AlgoBorderInfluence influence(1, 1, 1, 1, 1);
    EXPECT_NO_THROW(influence.setNumOfVoxels(static_cast<DirectionTypes>(10), 5));
    for (int direction = 0; direction < 10; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), 1ul);
}
