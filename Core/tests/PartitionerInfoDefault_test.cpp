#include "Core/private/PartitionerInfoDefault.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

TEST(PartitionerInfoDefaultTest, givesTheSameGrainsForEveryRegion)
{
    PartitionerInfoDefault const partitioner;
    AbstractPartitionerPolicy const& policy = partitioner;
    for (access::Region const& region : {access::Region(), access::Region(0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
                                         access::Region(0, 100000, 0, 100000, 0, 1000, 0, 7, 0, 3)}) {
        AbstractPartitionerPolicy::PartitionerGrainSizes sizes{};
        policy.getPartitionerGrainSizes(sizes, region);
        EXPECT_EQ(sizes.grainCols, 1024u);
        EXPECT_EQ(sizes.grainRows, 10u);
        EXPECT_EQ(sizes.grainPlans, 10u);
        EXPECT_EQ(sizes.grainTimeSeries, 1u);
        EXPECT_EQ(sizes.grainSpectralSeries, 1u);
    }
}

} // namespace
} // namespace qel
