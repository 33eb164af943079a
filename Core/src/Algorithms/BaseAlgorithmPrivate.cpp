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

#include <tbb/task_arena.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace qel::algorithms {

BaseAlgorithmPrivate::BaseAlgorithmPrivate(BaseAlgorithm* algorithm,
                                           AbstractPrivateImplementation* parentImplementation)
    : publicAlgorithm(algorithm)
    , parent(parentImplementation)
{
    if (parent)
        parent->setCurrentChild(algorithm);
}

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
        cancelRequested = false;
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
        interaction->updateProgress(getProgress());
    setImplementation(nullptr);
    return true;
}

void BaseAlgorithmPrivate::runPolled(InteractionInterface& host)
{
    using namespace std::chrono;
    auto const cap = [](unsigned short period) { return milliseconds(std::min<unsigned short>(period, 100)); };

    auto const promise = std::make_shared<std::promise<void>>();
    std::future<void> done = promise->get_future();
    // As many workers as a run on this thread would get, and one where there would be none: an enqueued task is never
    // left to starve.
    tbb::task_arena arena(tbb::this_task_arena::max_concurrency());
    arena.enqueue([this, &host, promise] {
        try {
            runInternal(&host);
            promise->set_value();
        } catch (...) {
            promise->set_exception(std::current_exception());
        }
    });

    try {
        auto const progressPeriod = cap(host.getProgressPeriod());
        auto const cancelPeriod = cap(host.getCancelPeriod());
        auto progressDeadline = steady_clock::now() + progressPeriod;
        auto cancelDeadline = steady_clock::now() + cancelPeriod;
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
                host.updateProgress(getProgress());
                progressDeadline = now + progressPeriod;
            }
        }
    } catch (...) {
        // The host itself failed. The task works on this algorithm, so it ends before anything is let go.
        cancelRun();
        done.wait();
        throw;
    }
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
        lastProgress = impl->getProgress();
    return lastProgress;
}

void BaseAlgorithmPrivate::setImplementation(AbstractPrivateImplementation* implementation)
{
    std::lock_guard const guard(mutex);
    impl = implementation;
    if (impl && cancelRequested)
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
