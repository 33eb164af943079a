#include "Core/private/Helper/ImageModelCheckTypeEquivalence.h"
#include "Core/private/Throw.h"
#include <qel/ImageModel.h>

namespace qel::helper {

void checkVoxelType(ImageModel const& image, VoxelTypes type)
{
    if (image.getVoxelType() != type)
        QEL_THROW(UnexpectedError, "Types do not correspond in CheckTypeEquivalence");
}

} // namespace qel::helper
