#pragma once

namespace qel::nonlinear_filtering {

/// Whether a histogram is the faster way to the median of a window of this radius (1 or more), in an image whose
/// values span `range`. Measured up to some radius, and extrapolated beyond.
bool shouldUse2DHistogram(unsigned size, unsigned range, bool isSquare);
bool shouldUse3DHistogram(unsigned size, unsigned range, bool isCube);

} // namespace qel::nonlinear_filtering
