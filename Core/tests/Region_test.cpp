#include <qel/access/Region.h>

#include <gtest/gtest.h>

namespace qel::access {
namespace {

TEST(RegionTest, isOneVoxelByDefault)
{
    Region const region;
    Block const& block = region;
    EXPECT_EQ(block.rowsBegin(), 0u);
    EXPECT_EQ(block.rowsEnd(), 1u);
    EXPECT_EQ(block.colsBegin(), 0u);
    EXPECT_EQ(block.colsEnd(), 1u);
    EXPECT_EQ(block.plansBegin(), 0u);
    EXPECT_EQ(block.plansEnd(), 1u);
    EXPECT_EQ(block.timeSeriesBegin(), 0u);
    EXPECT_EQ(block.timeSeriesEnd(), 1u);
    EXPECT_EQ(block.spectralSeriesBegin(), 0u);
    EXPECT_EQ(block.spectralSeriesEnd(), 1u);
    EXPECT_EQ(region.getNumOfVoxels(), 1u);
}

TEST(RegionTest, keepsItsTenCoordinatesAndCountsFromThem)
{
    Region const region(1, 4, 10, 15, 100, 107, 1000, 1011, 20, 22);
    Block const& block = region;
    EXPECT_EQ(block.rowsBegin(), 1u);
    EXPECT_EQ(block.rowsEnd(), 4u);
    EXPECT_EQ(block.getNbRows(), 3u);
    EXPECT_EQ(block.colsBegin(), 10u);
    EXPECT_EQ(block.colsEnd(), 15u);
    EXPECT_EQ(block.getNbCols(), 5u);
    EXPECT_EQ(block.plansBegin(), 100u);
    EXPECT_EQ(block.plansEnd(), 107u);
    EXPECT_EQ(block.getNbPlans(), 7u);
    EXPECT_EQ(block.timeSeriesBegin(), 1000u);
    EXPECT_EQ(block.timeSeriesEnd(), 1011u);
    EXPECT_EQ(block.getNbTimeSeries(), 11u);
    EXPECT_EQ(block.spectralSeriesBegin(), 20u);
    EXPECT_EQ(block.spectralSeriesEnd(), 22u);
    EXPECT_EQ(block.getNbSpectralSeries(), 2u);
    EXPECT_EQ(region.getNumOfVoxels(), 3u * 5 * 7 * 11 * 2);
}

TEST(RegionTest, hasNoVoxelWhenOneAxisHasNone)
{
    EXPECT_EQ(Region(0, 3, 0, 0, 0, 1, 0, 1, 0, 1).getNumOfVoxels(), 0u);
    EXPECT_EQ(Region(0, 3, 0, 4, 0, 1, 0, 1, 5, 5).getNumOfVoxels(), 0u);
}

} // namespace
} // namespace qel::access
