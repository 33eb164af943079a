#pragma once

#include <string>

namespace host {

/// Reads the command line, does what it says, and gives the text for standard output. Throws UsageError, HostError,
/// Interrupted and qel::Exception.
std::string doCommandLine(int argc, char const* const* argv);

} // namespace host
