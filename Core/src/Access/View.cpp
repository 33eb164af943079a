#include "Core/private/Access/View.h"

#include "Core/private/Helper/underlyingImage.h"

namespace qel::access {

bool areOnOneImage(ImageModel const* first, ImageModel const* second)
{
    return helper::underlyingImage(first) == helper::underlyingImage(second);
}

} // namespace qel::access
