#include "Core/private/Access/BlockLoop.h"

#include "Core/private/BaseTbbAlgorithm.h"

#include <tbb/parallel_for.h>
#include <tbb/parallel_reduce.h>

#include <utility>

namespace qel::access {

namespace {

template <class B> void loop(BaseTbbAlgorithm& owner, BlockTask<B>& task, B const& whole)
{
    auto const onBlock = [&](B const& block) {
        task.runBlock(block);
        owner.addDoneWork(block.getNumOfVoxels());
    };
    if (owner.areBlocksFixed())
        tbb::parallel_for(whole, onBlock, tbb::simple_partitioner(), owner.getContext());
    else
        tbb::parallel_for(whole, onBlock, tbb::auto_partitioner(), owner.getContext());
}

template <class B> class Reduction
{
public:
    Reduction(BaseTbbAlgorithm& owner, ReductionTask<B>& root)
        : m_owner(owner)
        , m_task(&root)
    {}
    Reduction(Reduction& other, tbb::split)
        : m_owner(other.m_owner)
        , m_split(other.m_task->split())
        , m_task(m_split.get())
    {}

    void operator()(B const& block)
    {
        m_task->runBlock(block);
        m_owner.addDoneWork(block.getNumOfVoxels());
    }
    void join(Reduction& right) { m_task->join(*right.m_task); }

private:
    BaseTbbAlgorithm& m_owner;
    std::unique_ptr<ReductionTask<B>> m_split; // none in the root
    ReductionTask<B>* m_task;
};

template <class B> void loop(BaseTbbAlgorithm& owner, ReductionTask<B>& task, B const& whole)
{
    // Not the plain reduction: its joins follow the schedule, and sums of floats would differ from run to run.
    Reduction<B> reduction(owner, task);
    tbb::parallel_deterministic_reduce(whole, reduction, tbb::simple_partitioner(), owner.getContext());
}

struct Axes
{
    Range plans, rows, cols;
};

Axes axesOf(BaseTbbAlgorithm const& owner)
{
    Region const& region = owner.getProcessingRegion();
    AbstractPartitionerPolicy::PartitionerGrainSizes grains;
    owner.getPartitionerGrainSizes(grains);
    return {{region.plansBegin() + region.getNbPlans(), region.plansBegin(), grains.grainPlans},
            {region.rowsBegin() + region.getNbRows(), region.rowsBegin(), grains.grainRows},
            {region.colsBegin() + region.getNbCols(), region.colsBegin(), grains.grainCols}};
}

template <class Task, class B> bool runLoop(BaseTbbAlgorithm& owner, Task& task, B const& whole)
{
    if (owner.isCancelled())
        return false;
    loop(owner, task, whole);
    return !owner.isCancelled();
}

template <class Task, class B> bool runSlice(BaseTbbAlgorithm& owner, Task& task, B const& whole)
{
    if (!runLoop(owner, task, whole))
        return false;
    owner.writeTemporizedOutputs();
    return true;
}

// The outer loops run up to counts, not ends: a region with a non-zero begin covers the series below its count.
template <class Task> bool run(BaseTbbAlgorithm& owner, Task& task, Filter2dTag)
{
    Region const& region = owner.getProcessingRegion();
    Axes const axes = axesOf(owner);
    for (unsigned long time = region.timeSeriesBegin(); time < region.getNbTimeSeries(); ++time)
        for (unsigned long plan = region.plansBegin(); plan < region.getNbPlans(); ++plan)
            for (unsigned long series = region.spectralSeriesBegin(); series < region.getNbSpectralSeries(); ++series)
                if (!runSlice(owner, task, Block2d(axes.rows, axes.cols, plan, time, series)))
                    return false;
    return true;
}

template <class Task> bool run(BaseTbbAlgorithm& owner, Task& task, Filter3dTag)
{
    Region const& region = owner.getProcessingRegion();
    Axes const axes = axesOf(owner);
    for (unsigned long time = region.timeSeriesBegin(); time < region.getNbTimeSeries(); ++time)
        for (unsigned long series = region.spectralSeriesBegin(); series < region.getNbSpectralSeries(); ++series)
            if (!runSlice(owner, task, Block3d(axes.plans, axes.rows, axes.cols, time, series)))
                return false;
    return true;
}

template <class Task, class Tag> bool runPublished(BaseTbbAlgorithm& owner, Task& task, Tag tag)
{
    owner.setTotalWork(owner.getProcessingRegion().getNumOfVoxels());
    algorithms::AbstractPrivateImplementation::Publication const publication(owner);
    return run(owner, task, tag);
}

} // namespace

bool runSlices(BaseTbbAlgorithm& owner, BlockTask<Block2d>& task) { return runPublished(owner, task, Filter2dTag()); }
bool runSlices(BaseTbbAlgorithm& owner, BlockTask<Block3d>& task) { return runPublished(owner, task, Filter3dTag()); }
bool runSlices(BaseTbbAlgorithm& owner, ReductionTask<Block2d>& task)
{
    return runPublished(owner, task, Filter2dTag());
}
bool runSlices(BaseTbbAlgorithm& owner, ReductionTask<Block3d>& task)
{
    return runPublished(owner, task, Filter3dTag());
}

bool runBlocks(BaseTbbAlgorithm& owner, BlockTask<Block2d>& task, Block2d const& slice)
{
    return runLoop(owner, task, slice);
}
bool runBlocks(BaseTbbAlgorithm& owner, BlockTask<Block3d>& task, Block3d const& slice)
{
    return runLoop(owner, task, slice);
}

} // namespace qel::access
