#include "Progress.h"

#include "Signals.h"

#include <qel/BaseAlgorithm.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

namespace host {

namespace {

int const barWidth = 40;
auto const period = std::chrono::milliseconds(20);

} // namespace

Progress::Progress(qel::BaseAlgorithm& algorithm, bool visible)
    : m_algorithm(algorithm)
    , m_visible(visible)
{
    draw(0);
    m_thread = std::thread([this] { watch(); });
}

Progress::~Progress()
{
    {
        std::lock_guard const lock(m_mutex);
        m_finished = true;
    }
    m_wake.notify_one();
    m_thread.join();
    draw(m_algorithm.getProgress());
    if (m_visible)
        std::fputs(m_shown == 100 ? "\n" : "\r\033[K", stderr);
}

void Progress::watch()
{
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_for(lock, period, [this] { return m_finished; })) {
        // A request that comes before the work has begun is lost, so it is made again until the run ends.
        if (signals::received() != 0)
            m_algorithm.cancelExecution();
        draw(m_algorithm.getProgress());
    }
}

void Progress::draw(double percent)
{
    int const whole = static_cast<int>(std::clamp(percent, 0.0, 100.0));
    if (!m_visible || whole <= m_shown)
        return;
    m_shown = whole;
    auto const filled = static_cast<std::size_t>(whole * barWidth / 100);
    std::string const bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %3d %%", bar.c_str(), whole);
    std::fflush(stderr);
}

} // namespace host
