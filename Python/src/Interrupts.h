#pragma once

#include <atomic>

namespace qel {
class BaseAlgorithm;
}

namespace binding {

/// A run under way, which may be asked to stop from any thread.
///
/// One thread of the process, asleep but for this, repeats the request until the run has ended: one that comes before
/// the work has begun would be lost.
class RunningRun
{
public:
    explicit RunningRun(qel::BaseAlgorithm& algorithm);
    RunningRun(RunningRun const&) = delete;
    RunningRun& operator=(RunningRun const&) = delete;
    ~RunningRun();

    /// From any thread.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }

private:
    friend class CtrlC;

    qel::BaseAlgorithm& m_algorithm;
    std::atomic<bool> m_isCancelled{false};

    friend struct Watcher;
};

/// While it exists, Ctrl-C cancels the run as well. Python's own handler is called, too, but what it is to raise must
/// wait until the run has ended. For the main thread alone.
class CtrlC
{
public:
    explicit CtrlC(RunningRun& run);
    CtrlC(CtrlC const&) = delete;
    CtrlC& operator=(CtrlC const&) = delete;
    ~CtrlC();

private:
    RunningRun* m_before;
};

} // namespace binding
