#pragma once

#include <qel/VoxelTypes.h>

/// The voxel types of the results of arithmetic.
namespace qel::rules {

enum PromotionMode : unsigned int
{
    PROMOTION_ADD = 0, ///< subtract and divide too
    PROMOTION_MULTIPLY,
    PROMOTION_MINIMUM,
    PROMOTION_MAXIMUM
};

bool isPromotionMode(unsigned int mode);

/// The type of an operation on two images. A complex type, on which no algorithm runs, wins.
VoxelTypes promoted(unsigned int mode, VoxelTypes first, VoxelTypes second);

/// The narrowest of QEL_INT16, QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64 that keeps the value. A NaN, which equals
/// nothing, is kept by the last alone.
VoxelTypes classOf(double value);

/// The type of an operation on an image and a value.
VoxelTypes promotedWithValue(unsigned int mode, VoxelTypes image, double value);

} // namespace qel::rules
