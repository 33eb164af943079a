#pragma once

namespace qel::linear_filtering {

/// How a filter finds the voxel type of its output.
enum OutputModeType : int
{
    QEL_OUTPUT_MODE_AUTO = 0, ///< the type of a sum of the input's values
    QEL_OUTPUT_MODE_CUSTOM    ///< the type that is asked for
};

} // namespace qel::linear_filtering
