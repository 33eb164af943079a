#pragma once

namespace qel {

class ImageModel;

namespace helper {

/// The image that stands behind any number of proxies: the image itself if it is none. Only images for which this is
/// the same can share voxels.
ImageModel const* underlyingImage(ImageModel const* image);

} // namespace helper
} // namespace qel
