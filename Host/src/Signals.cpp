#include "Signals.h"

#include "Errors.h"

#include <array>
#include <atomic>
#include <csignal>
#include <deque>

#include <unistd.h>

namespace host::signals {

namespace {

std::atomic<int> signalNumber{0};
// Read by the handler, so nothing but atomics and plain characters.
std::array<std::atomic<char const*>, 256> guarded{};

void handle(int number)
{
    int none = 0;
    if (signalNumber.compare_exchange_strong(none, number))
        return;
    for (std::atomic<char const*>& entry : guarded) {
        if (char const* const path = entry.load())
            unlink(path);
    }
    _exit(128 + number);
}

} // namespace

void install()
{
    struct sigaction action = {};
    action.sa_handler = handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    // A shell starts background jobs of a script with SIGINT ignored; a `kill -INT` from that script is meant all the
    // same. What nohup says of SIGHUP stays.
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    struct sigaction before = {};
    if (sigaction(SIGHUP, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
        sigaction(SIGHUP, &action, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

int received() { return signalNumber.load(); }

void check()
{
    if (received() != 0)
        throw Interrupted();
}

bool guardFile(std::string const& path)
{
    // The handler may be reading a copy at any time, so none is ever freed; the list keeps them in reach.
    static auto& copies = *new std::deque<std::string>;
    char const* const copy = copies.emplace_back(path).c_str();
    for (std::atomic<char const*>& entry : guarded) {
        char const* none = nullptr;
        if (entry.compare_exchange_strong(none, copy))
            return true;
    }
    return false;
}

void releaseFile(std::string const& path)
{
    for (std::atomic<char const*>& entry : guarded) {
        char const* const copy = entry.load();
        if (copy && path == copy)
            entry.store(nullptr);
    }
}

} // namespace host::signals
