#pragma once

#include <cstddef>

// Rows on their way between images and the buffers of tasks.

namespace qel::helper {

/// Copies; the two may overlap. Rows of kilobytes take half the time of memmove, whose string instructions start
/// slowly.
void copyBytes(unsigned char* to, unsigned char const* from, std::size_t count);

/// The same past the caches, for what will not stay there anyway: memory then needs not be read before it is written.
/// What is written is seen by all threads when the call returns. Short ranges, where that costs more than it gains,
/// are copied as above.
void copyBytesPastCaches(unsigned char* to, unsigned char const* from, std::size_t count);

/// An image of so many bytes has left the caches before anybody reads it again: rows go past them.
inline constexpr std::size_t largeImage = std::size_t(16) << 20;

} // namespace qel::helper
