#pragma once

namespace qel {

/// What loading and unloading the shared library do once, and what hosts that load explicitly may call again.
void init_library();
void terminate_library();

} // namespace qel
