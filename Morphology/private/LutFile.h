#pragma once

#include <cstddef>

namespace qel::morphology {

/// Fills `table` with what follows the first 4 bytes of a regular file of exactly `size` + 4 bytes. Throws a standard
/// exception, whose text begins with the path, for any other.
void readLutFile(char const* path, void* table, std::size_t size);

} // namespace qel::morphology
