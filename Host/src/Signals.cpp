#include "Signals.h"

#include "Errors.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace host::signals {

namespace {

std::atomic<int> signalNumber{0};
// Read by the handler, so nothing but atomics and plain characters.
std::array<std::atomic<char*>, 256> guarded{};

void handle(int number)
{
    int none = 0;
    if (signalNumber.compare_exchange_strong(none, number))
        return;
    for (std::atomic<char*>& entry : guarded) {
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
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        // What the parent chose to ignore (nohup, a background job of a script) stays ignored.
        struct sigaction before = {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
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
    char* const copy = strdup(path.c_str());
    for (std::atomic<char*>& entry : guarded) {
        char* none = nullptr;
        if (entry.compare_exchange_strong(none, copy))
            return true;
    }
    std::free(copy);
    return false;
}

void releaseFile(std::string const& path)
{
    for (std::atomic<char*>& entry : guarded) {
        char* const copy = entry.load();
        // The copy is not freed: the handler may be reading it.
        if (copy && path == copy)
            entry.store(nullptr);
    }
}

} // namespace host::signals
