#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace qel {
class BaseAlgorithm;
}

namespace host {

/// Watches a run from a thread of its own: draws a bar on standard error, and cancels the run after a signal.
///
/// The run itself stays on the calling thread, which takes part in the work. A polled run would leave that thread idle,
/// and half the machine where there are two processors.
class Progress
{
public:
    Progress(qel::BaseAlgorithm& algorithm, bool visible);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    /// Ends the line of the bar, or wipes the bar of a run that did not reach its end.
    ~Progress();

private:
    void watch();
    void draw(double percent);

    qel::BaseAlgorithm& m_algorithm;
    bool const m_visible;
    int m_shown = -1;
    bool m_finished = false;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::thread m_thread;
};

} // namespace host
