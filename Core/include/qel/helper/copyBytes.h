#pragma once

#include <qel/Export.h>

// Rows on their way between images and the buffers of tasks: for whoever implements ImageModel.

namespace qel::helper {

/// Copies; the two may overlap. Rows of kilobytes take half the time of memmove, whose string instructions start
/// slowly.
QEL_API void copyBytes(unsigned char* to, unsigned char const* from, unsigned long count);

/// The same past the caches, for what will not stay there anyway: memory then needs not be read before it is written.
/// What is written is seen by all threads when the call returns. Short ranges, where that costs more than it gains,
/// are copied as above.
QEL_API void copyBytesPastCaches(unsigned char* to, unsigned char const* from, unsigned long count);

/// An image of so many bytes has left the caches before anybody reads it again: its rows are best written past them.
inline constexpr unsigned long largeImage = 16ul << 20;

} // namespace qel::helper
