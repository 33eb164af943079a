#pragma once

#include "Core/private/AbstractPartitionerPolicy.h"

namespace qel {

// 1024 columns, 10 rows and 10 plans, whatever the region, the voxel type and the machine.
class PartitionerInfoDefault : public AbstractPartitionerPolicy
{
public:
    void getPartitionerGrainSizes(PartitionerGrainSizes& sizes, access::Region const& region) const override;
};

} // namespace qel
