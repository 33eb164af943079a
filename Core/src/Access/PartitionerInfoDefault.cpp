#include "Core/private/PartitionerInfoDefault.h"

namespace qel {

void PartitionerInfoDefault::getPartitionerGrainSizes(PartitionerGrainSizes& sizes, access::Region const&) const
{
    sizes = {1024, 10, 10, 1, 1};
}

} // namespace qel
