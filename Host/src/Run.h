#pragma once

#include <qel/OptimLevelType.h>

#include <optional>
#include <string>
#include <vector>

namespace host {

/// Everything that `quelide run` is told.
struct RunRequest
{
    std::string algorithm;
    std::vector<std::string> assignments; ///< NAME=VALUE
    std::optional<qel::OptimLevelType> level;
    std::optional<int> threads;
    std::optional<int> extraMemory;
    std::optional<bool> progress; ///< without it: where standard error is a terminal
    bool json = false;
};

/// Creates the algorithm, sets its properties, runs it, stores its images, and gives the text for standard output.
std::string run(RunRequest const& request);

} // namespace host
