#include "Interrupts.h"

#include <qel/BaseAlgorithm.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

#include <pthread.h>
#include <semaphore.h>

namespace binding {

struct Watcher
{
    sem_t wake;
    std::mutex mutex; // guards what follows
    std::vector<RunningRun*> runs;
    bool isStarted = false;
    // Of Ctrl-C: read by the signal handler.
    std::atomic<RunningRun*> interruptible{nullptr};
    std::atomic<bool> isInterrupted{false};
    struct sigaction before = {};

    Watcher() { sem_init(&wake, 0, 0); }

    void watch()
    {
        for (;;) {
            while (sem_wait(&wake) != 0 && errno == EINTR) {
            }
            while (cancelWhatIsToBe())
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    bool cancelWhatIsToBe()
    {
        std::lock_guard const guard(mutex);
        if (isInterrupted.load()) {
            RunningRun* const run = interruptible.load();
            // The run may have ended in the meantime.
            if (run && std::find(runs.begin(), runs.end(), run) != runs.end())
                run->m_isCancelled = true;
        }
        bool any = false;
        for (RunningRun* const run : runs) {
            if (run->m_isCancelled) {
                run->m_algorithm.cancelExecution();
                any = true;
            }
        }
        return any;
    }

    void start()
    {
        if (isStarted)
            return;
        isStarted = true;
        // Signals are for the other threads.
        sigset_t all, old;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &old);
        std::thread([this] { watch(); }).detach();
        pthread_sigmask(SIG_SETMASK, &old, nullptr);
    }
};

namespace {

// Never destroyed: its thread lives as long as the process.
alignas(Watcher) unsigned char place[sizeof(Watcher)];

Watcher& watcher()
{
    static Watcher& only = []() -> Watcher& {
        auto& made = *new (place) Watcher;
        // A child process has none of the threads, and maybe a lock that nobody gives back.
        pthread_atfork(nullptr, nullptr, [] {
            auto& old = *std::launder(reinterpret_cast<Watcher*>(place));
            if (old.interruptible.load())
                sigaction(SIGINT, &old.before, nullptr);
            new (place) Watcher;
        });
        return made;
    }();
    return only;
}

extern "C" void handleInterrupt(int number, siginfo_t* info, void* context)
{
    int const error = errno;
    auto& all = *std::launder(reinterpret_cast<Watcher*>(place));
    all.isInterrupted.store(true);
    sem_post(&all.wake);
    struct sigaction const& before = all.before;
    if (before.sa_flags & SA_SIGINFO)
        before.sa_sigaction(number, info, context);
    else if (before.sa_handler != SIG_DFL && before.sa_handler != SIG_IGN)
        before.sa_handler(number);
    errno = error;
}

} // namespace

RunningRun::RunningRun(qel::BaseAlgorithm& algorithm)
    : m_algorithm(algorithm)
{
    Watcher& all = watcher();
    std::lock_guard const guard(all.mutex);
    all.start();
    all.runs.push_back(this);
}

RunningRun::~RunningRun()
{
    Watcher& all = watcher();
    std::lock_guard const guard(all.mutex);
    all.runs.erase(std::find(all.runs.begin(), all.runs.end(), this));
}

void RunningRun::cancel()
{
    m_isCancelled = true;
    sem_post(&watcher().wake);
}

CtrlC::CtrlC(RunningRun& run)
    : m_before(watcher().interruptible.load())
{
    Watcher& all = watcher();
    // A run within a run, of an object that is destroyed meanwhile: the handler is there already.
    if (!m_before) {
        all.isInterrupted.store(false);
        struct sigaction action = {};
        action.sa_sigaction = handleInterrupt;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, nullptr, &all.before);
        action.sa_flags = SA_SIGINFO | (all.before.sa_flags & (SA_ONSTACK | SA_RESTART));
        all.interruptible.store(&run);
        sigaction(SIGINT, &action, nullptr);
    } else {
        all.interruptible.store(&run);
    }
}

CtrlC::~CtrlC()
{
    Watcher& all = watcher();
    if (!m_before)
        sigaction(SIGINT, &all.before, nullptr);
    // The watcher must not meet a run that is gone.
    std::lock_guard const guard(all.mutex);
    all.interruptible.store(m_before);
}

} // namespace binding
