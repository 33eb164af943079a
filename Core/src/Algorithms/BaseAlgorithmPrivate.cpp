#include "Core/private/BaseAlgorithmPrivate.h"

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Runnable.h"
#include "Core/private/Throw.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>
#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/algorithms/InteractionInterface.h>

#include <tbb/global_control.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace qel::algorithms {

BaseAlgorithmPrivate::BaseAlgorithmPrivate(BaseAlgorithm* algorithm,
                                           AbstractPrivateImplementation* parentImplementation)
    : publicAlgorithm(algorithm)
    , parent(parentImplementation)
{}

BaseAlgorithmPrivate::~BaseAlgorithmPrivate()
{
    if (parent)
        parent->removeChild();
}

void BaseAlgorithmPrivate::runInternal(InteractionInterface* polled)
{
    struct Reset
    {
        InteractionInterface*& slot;
        ~Reset() { slot = nullptr; }
    } const reset{interaction};
    interaction = polled;
    runInternal();
}

void BaseAlgorithmPrivate::runInternal()
{
    {
        std::lock_guard const guard(mutex);
        lastProgress = 0;
    }
    if (!autoCpuDispatch) {
        if (runFor(optimLevel))
            return;
    } else {
        EnumInfo const& levels = helper::optimLevelTypeInfo();
        for (unsigned long index = levels.getNumOfValues(); index-- > 0;)
            if (runFor(static_cast<OptimLevelType>(levels.getValueFromValueIndex(index))))
                return;
    }
    QEL_THROW(UnexpectedError, "no runner found for algorithm");
}

bool BaseAlgorithmPrivate::runFor(OptimLevelType level)
{
    auto const& runners = AlgoInfoPrivate::getPrivate(publicAlgorithm->getInfo())->getAllRunner();
    auto const runner = std::find_if(runners.begin(), runners.end(), [&](auto const& candidate) {
        return candidate->getOptimType() == level && candidate->isRunnable(publicAlgorithm);
    });
    if (runner == runners.end())
        return false;

    (*runner)->run(publicAlgorithm);
    if (interaction)
        report(*interaction);
    setImplementation(nullptr);
    return true;
}

void BaseAlgorithmPrivate::runPolled(InteractionInterface& host)
{
    using namespace std::chrono;
    // The request holds for this run alone. It is withdrawn here, not by the task: the host may be quicker than that.
    struct Withdraw
    {
        BaseAlgorithmPrivate& algorithm;
        ~Withdraw()
        {
            std::lock_guard const guard(algorithm.mutex);
            algorithm.cancelRequested = false;
        }
    } const withdraw{*this};

    {
        // Not left to the task: the first report may come before it, and is not about the run before.
        std::lock_guard const guard(mutex);
        lastProgress = 0;
    }
    auto const cap = [](unsigned short period) { return milliseconds(std::min<unsigned short>(period, 100)); };

    std::atomic<bool> isTaken{false};
    std::promise<void> end;
    std::future<void> done = end.get_future();
    auto const work = [&] {
        if (isTaken.exchange(true))
            return;
        try {
            runInternal(&host);
            end.set_value();
        } catch (...) {
            end.set_exception(std::current_exception());
        }
    };
    // As many workers as a run on this thread would get, but no more than are allowed by now, which would be a warning
    // on the host's terminal; and one where there would be none: an enqueued task is never left to starve.
    int const allowed =
        static_cast<int>(tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
    tbb::task_arena arena(std::min(tbb::this_task_arena::max_concurrency(), allowed));
    // In a context of its own, with this thread's treatment of rounding and of denormal numbers: a group that is
    // cancelled around the caller is no reason to skip the work.
    tbb::task_group_context context(tbb::task_group_context::isolated, tbb::task_group_context::fp_settings);
    tbb::task_group task(context);
    arena.enqueue(task.defer(work));
    // Where this thread took the work, an empty task still waits for a worker, perhaps until the program ends. It is
    // met here: nothing outlives the run, neither the task's memory nor what it knows of this stack.
    struct Meet
    {
        tbb::task_arena& arena;
        tbb::task_group& task;
        ~Meet()
        {
            arena.execute([this] { task.wait(); });
        }
    } const meet{arena, task};
    auto const takeWork = [&] { arena.execute(work); };

    try {
        auto const progressPeriod = cap(host.getProgressPeriod());
        auto const cancelPeriod = cap(host.getCancelPeriod());
        auto progressDeadline = steady_clock::now() + progressPeriod;
        auto cancelDeadline = steady_clock::now() + cancelPeriod;
        // A host may poll on every thread that the scheduler has. Then nobody is left for the work but these. Long,
        // since whoever works does not poll: a busy machine alone is no reason.
        auto const patienceEnds = steady_clock::now() + seconds(5);
        while (done.wait_for(seconds(0)) != std::future_status::ready) {
            std::this_thread::sleep_for(milliseconds(20));
            auto const now = steady_clock::now();
            if (now > cancelDeadline) {
                if (host.isCancelRequested()) {
                    cancelRun();
                    break;
                }
                // Only the first wait is the cancel period: a host that wants news often wants to stop quickly too.
                cancelDeadline = now + progressPeriod;
            }
            if (now > progressDeadline) {
                report(host);
                progressDeadline = now + progressPeriod;
            }
            if (now > patienceEnds)
                takeWork();
        }
    } catch (...) {
        // The host itself failed. The task works on this algorithm, so it ends before anything is let go.
        cancelRun();
        takeWork();
        done.wait();
        throw;
    }
    takeWork();
    done.get();
}

void BaseAlgorithmPrivate::cancelRun()
{
    std::lock_guard const guard(mutex);
    cancelRequested = true;
    if (impl)
        impl->cancelExecution();
}

double BaseAlgorithmPrivate::getProgress()
{
    std::lock_guard const guard(mutex);
    if (impl)
        // Between two children, a composite has neither the one's part nor the next step.
        lastProgress = std::max(lastProgress, impl->getProgress());
    return lastProgress;
}

void BaseAlgorithmPrivate::report(InteractionInterface& host)
{
    // Asked and told in one go: else the host could hear of the end first, and of an earlier state after it.
    std::lock_guard const guard(reports);
    host.updateProgress(getProgress());
}

void BaseAlgorithmPrivate::setImplementation(AbstractPrivateImplementation* implementation)
{
    std::lock_guard const guard(mutex);
    impl = implementation;
    // A child that starts after its composite was cancelled hears of it here: nobody else tells it.
    if (impl && (cancelRequested || (parent && parent->isCancelled())))
        impl->markCancelled();
}

void BaseAlgorithmPrivate::withdrawImplementation(double progress)
{
    std::lock_guard const guard(mutex);
    lastProgress = progress;
    impl = nullptr;
}

void BaseAlgorithmPrivate::cancelExecution()
{
    std::lock_guard const guard(mutex);
    if (impl)
        impl->cancelExecution();
}

bool BaseAlgorithmPrivate::isExecutionCancelled()
{
    std::lock_guard const guard(mutex);
    return impl && impl->isCancelled();
}

} // namespace qel::algorithms
