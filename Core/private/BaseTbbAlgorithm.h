#pragma once

#include "Core/private/AbstractPartitionerPolicy.h"
#include "Core/private/AbstractPrivateImplementation.h"

#include <qel/access/Region.h>

#include <boost/shared_ptr.hpp>
#include <tbb/task_group.h> // tbb::task_group_context

namespace qel {

/// What every frame has: the group that its parallel loops run in, the region that they cover, and how it is cut.
class BaseTbbAlgorithm : public algorithms::AbstractPrivateImplementation
{
public:
    explicit BaseTbbAlgorithm(BaseAlgorithm* owner);

    /// Callable from any thread during a run: started blocks finish, no new one starts.
    void cancelExecution() override;

    /// What waited for the end of a slice reaches the images. Called on the thread that runs the frame.
    virtual void writeTemporizedOutputs() = 0;

    access::Region const& getProcessingRegion() const { return m_region; }
    void setProcessingRegion(access::Region const& region);
    /// For the images that a frame is bound to: the first one sets the region, and one that was given stays.
    void setProcessingRegionIfNone(access::Region const& region);

    void getPartitionerGrainSizes(AbstractPartitionerPolicy::PartitionerGrainSizes& sizes) const;
    void setPartitionerInformation(boost::shared_ptr<AbstractPartitionerPolicy> policy);

    /// For bodies whose result depends on where blocks are cut: the cuts follow from the region and the grains alone,
    /// never from the schedule.
    void setBlocksAreFixed(bool areFixed) { m_blocksAreFixed = areFixed; }
    bool areBlocksFixed() const { return m_blocksAreFixed; }

    tbb::task_group_context& getContext() { return m_context; }

private:
    tbb::task_group_context m_context;
    access::Region m_region;
    bool m_hasRegion = false;
    boost::shared_ptr<AbstractPartitionerPolicy> m_policy;
    bool m_blocksAreFixed = false;
};

} // namespace qel
