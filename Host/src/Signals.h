#pragma once

#include <string>

namespace host {

/// Ctrl-C and its kin. The first signal sets a flag, which everything long looks at; a second one ends the program at
/// once, and takes the temporary files with it.
namespace signals {

/// Catches SIGINT, SIGTERM and SIGHUP. A file that grows beyond the limit of the process becomes a write error.
void install();

/// The number of the first signal; 0 before it.
int received();

/// Throws Interrupted after the first signal.
void check();

/// The file is removed when a second signal ends the program. False where there is no more room to remember it.
bool guardFile(std::string const& path);
void releaseFile(std::string const& path);

} // namespace signals
} // namespace host
