#include "Segmentation/private/StripeLoops.h"

#include <tbb/parallel_for.h>
#include <tbb/parallel_reduce.h>

#include <memory>

namespace qel::segmentation {

namespace {

using Task = access::ReductionTask<access::Block2d>;

class Reduction
{
public:
    explicit Reduction(Task& root)
        : m_task(&root)
    {}
    Reduction(Reduction& other, tbb::split)
        : m_split(other.m_task->split())
        , m_task(m_split.get())
    {}

    void operator()(access::Block2d const& block) { m_task->runBlock(block); }
    void join(Reduction& right) { m_task->join(*right.m_task); }

private:
    std::unique_ptr<Task> m_split; // none in the root
    Task* m_task;
};

} // namespace

void reduceStripes(access::Block2d const& whole, Task& task, tbb::task_group_context& context)
{
    Reduction reduction(task);
    tbb::parallel_deterministic_reduce(whole, reduction, tbb::simple_partitioner(), context);
}

void forEachStripe(access::Block2d const& whole, access::BlockTask<access::Block2d>& task,
                   tbb::task_group_context& context)
{
    tbb::parallel_for(
        whole, [&](access::Block2d const& block) { task.runBlock(block); }, tbb::simple_partitioner(), context);
}

} // namespace qel::segmentation
