#include "Core/private/Helper/underlyingImage.h"

#include "Core/private/ImageModelProxy.h"
#include "Core/private/ImageModelSizeProxy.h"

namespace qel::helper {

ImageModel const* underlyingImage(ImageModel const* image)
{
    for (;;) {
        if (auto const* proxy = dynamic_cast<ImageModelProxy const*>(image))
            image = proxy->getWrapped();
        else if (auto const* box = dynamic_cast<ImageModelSizeProxy const*>(image))
            image = box->getWrapped();
        else
            return image;
    }
}

} // namespace qel::helper
