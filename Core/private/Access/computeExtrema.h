#pragma once

#include <qel/kernel/Offset2D.h>
#include <qel/kernel/Offset3D.h>

#include <vector>

namespace qel::kernel {

/// The smallest and the largest step on each axis. Of no offsets at all, the minima are the largest `long` and the
/// maxima the smallest.
void computeExtrema(std::vector<Offset2D> const& offsets, long& minX, long& maxX, long& minY, long& maxY);
void computeExtrema(std::vector<Offset3D> const& offsets, long& minX, long& maxX, long& minY, long& maxY, long& minZ,
                    long& maxZ);

} // namespace qel::kernel
