#pragma once

namespace qel::morphology {

/// What lies beyond a binary image.
enum BinaryBorderConditionTypes
{
    STOP_OBJECT = 0, ///< background
    CONTINUE_OBJECT  ///< the nearest voxel of the image, again and again
};

} // namespace qel::morphology
