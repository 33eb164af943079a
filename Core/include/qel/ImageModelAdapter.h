#pragma once

#include <qel/Export.h>
#include <qel/ImageModel.h>

namespace qel {

/// Makes sure that an image can be used as one of the wanted voxel type: `getImage` gives the image itself if it has
/// that type, and otherwise an image that converts each row on its way in or out.
///
/// Conversion is a plain cast: integers keep their low bits, reals are cut towards zero, nothing saturates or rounds.
/// So 300.7 becomes 44 in QEL_UINT8, and -1.5 becomes 255.
class QEL_API ImageModelAdapter
{
public:
    /// `model` is not owned, and must outlive the adapter.
    ImageModelAdapter(ImageModel* model, VoxelTypes wanted);
    ~ImageModelAdapter();

    ImageModelAdapter(ImageModelAdapter const&) = delete;
    ImageModelAdapter& operator=(ImageModelAdapter const&) = delete;

    /// The image to use, valid as long as the adapter.
    ImageModel* getImage() const;

private:
    ImageModel* image;
    bool ownsImage;
};

} // namespace qel
