#pragma once

#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>
#include <tbb/cache_aligned_allocator.h>
#include <tbb/concurrent_vector.h>

namespace qel::profiler {

/// Writes the coordinates of blocks, in vector order, as a text table: to see how a parallel loop cut an image.
///
/// The file is truncated. Its first line holds the ten titles: begin and end of columns, rows, plans, spectral series
/// and time series. One line for each block follows, in decimal numbers. Values are joined by `separator`.
/// Returns false when the file cannot be opened; nothing is written then.
QEL_API bool exportBlockVectorCSV(
    tbb::concurrent_vector<access::Block2d, tbb::cache_aligned_allocator<access::Block2d>> const& blocks,
    char const* fileName, char separator);

/// The same for blocks in three dimensions.
QEL_API bool exportBlockVectorCSV(
    tbb::concurrent_vector<access::Block3d, tbb::cache_aligned_allocator<access::Block3d>> const& blocks,
    char const* fileName, char separator);

} // namespace qel::profiler
