#pragma once

#include <string>
#include <vector>

namespace host {

/// The candidate with the fewest typing errors between it and `name` (letters in the wrong case count little). Empty
/// where there is no candidate.
std::string nearestName(std::string const& name, std::vector<std::string> const& candidates);

/// What is wrong with `name`, as one line: `no WHAT "NAME"; the nearest is "X"`.
std::string unknownName(std::string const& what, std::string const& name, std::vector<std::string> const& candidates);

} // namespace host
