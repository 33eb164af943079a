#pragma once

#include "Core/private/VoxelTypeOf.h"

namespace qel {

class ImageModel;

namespace helper {

// Throws UnexpectedError unless the image's voxel type is `type`.
void checkVoxelType(ImageModel const& image, VoxelTypes type);

template <class T> void ImageModelCheckTypeEquivalence(ImageModel const& image)
{
    checkVoxelType(image, VoxelTypeOf<T>::value);
}

} // namespace helper
} // namespace qel
