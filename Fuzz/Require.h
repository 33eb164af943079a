#pragma once

#include <cstdio>
#include <cstdlib>

namespace qel::fuzz {

/// A promise that holds for every input; the fuzzer keeps an input that breaks one.
inline void require(bool holds, char const* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

} // namespace qel::fuzz
