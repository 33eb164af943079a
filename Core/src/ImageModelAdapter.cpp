#include <qel/ImageModelAdapter.h>

#include "Core/private/ImageModelProxy.h"

namespace qel {

ImageModelAdapter::ImageModelAdapter(ImageModel* model, VoxelTypes wanted)
    : image(model)
    , ownsImage(model->getVoxelType() != wanted)
{
    if (ownsImage)
        image = new ImageModelProxy(model, wanted);
}

ImageModelAdapter::~ImageModelAdapter()
{
    if (ownsImage)
        delete image;
}

ImageModel* ImageModelAdapter::getImage() const { return image; }

} // namespace qel
