#include "Core/private/BaseTbbAlgorithm.h"

#include "Core/private/PartitionerInfoDefault.h"

#include <boost/make_shared.hpp>

namespace qel {

BaseTbbAlgorithm::BaseTbbAlgorithm(BaseAlgorithm* owningAlgorithm)
    : AbstractPrivateImplementation(owningAlgorithm)
    , m_policy(boost::make_shared<PartitionerInfoDefault>())
{}

void BaseTbbAlgorithm::cancelExecution()
{
    AbstractPrivateImplementation::cancelExecution();
    m_context.cancel_group_execution();
}

void BaseTbbAlgorithm::setProcessingRegion(access::Region const& region)
{
    m_region = region;
    m_hasRegion = true;
}

void BaseTbbAlgorithm::setProcessingRegionIfNone(access::Region const& region)
{
    if (!m_hasRegion)
        setProcessingRegion(region);
}

void BaseTbbAlgorithm::getPartitionerGrainSizes(AbstractPartitionerPolicy::PartitionerGrainSizes& sizes) const
{
    m_policy->getPartitionerGrainSizes(sizes, m_region);
}

void BaseTbbAlgorithm::setPartitionerInformation(boost::shared_ptr<AbstractPartitionerPolicy> policy)
{
    m_policy = policy;
}

} // namespace qel
