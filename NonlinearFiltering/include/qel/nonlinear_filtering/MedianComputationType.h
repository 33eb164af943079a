#pragma once

namespace qel::nonlinear_filtering {

/// How a median is found: from a histogram of the window, or by selection among its voxels. AUTOMATIC takes what is
/// faster for the window and the range of the image. The result is the same.
enum MedianComputationType
{
    AUTOMATIC = 1,
    HISTOGRAM,
    SELECTION
};

} // namespace qel::nonlinear_filtering
