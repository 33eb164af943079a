#pragma once

#include <qel/access/Region.h>

namespace qel {

// Chooses how small the blocks of a parallel loop may become.
class AbstractPartitionerPolicy
{
public:
    struct PartitionerGrainSizes
    {
        unsigned long grainCols;
        unsigned long grainRows;
        unsigned long grainPlans;
        unsigned long grainTimeSeries;
        unsigned long grainSpectralSeries;
    };

    // Voxel counts: an axis of a block is not split once it is no longer than its grain.
    virtual void getPartitionerGrainSizes(PartitionerGrainSizes& sizes, access::Region const& region) const = 0;
    virtual ~AbstractPartitionerPolicy() = default;
};

} // namespace qel
