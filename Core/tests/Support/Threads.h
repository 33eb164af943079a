#pragma once

#include <gtest/gtest.h>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>

#include <cstddef>

namespace qel::test {

/// Calls the callable with that many threads at most, also where the machine has fewer cores.
template <class Callable> auto withThreads(int threads, Callable&& callable)
{
    tbb::global_control const limit(tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(threads));
    tbb::task_arena arena(threads);
    return arena.execute([&] { return callable(); });
}

/// Calls the callable on one thread and then with four; a failure inside names the number.
template <class Callable> void onOneAndFourThreads(Callable&& callable)
{
    for (int const threads : {1, 4}) {
        SCOPED_TRACE(testing::Message() << threads << " threads");
        withThreads(threads, [&] { callable(); });
    }
}

} // namespace qel::test
