#pragma once

#include <string>

namespace host {

// Each command gives the text for standard output.

std::string list(bool json);
std::string info(std::string const& algorithm, bool json);
std::string show(std::string const& path, bool json);
std::string convert(std::string const& input, std::string const& output);
std::string cpu();

} // namespace host
