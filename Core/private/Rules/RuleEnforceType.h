#pragma once

#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/Property.h>

namespace qel {

/// Gives the image a voxel type, where it has another one.
class RuleEnforceType : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleEnforceType(VoxelTypes type)
        : type_(type)
    {
        if (!rules::exists(type))
            QEL_THROW(RuleException, "The VoxelTypes \"" << static_cast<int>(type)
                                                         << "\" does not correspond to an existing data type.");
    }

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel* const image = property.get();
        if (image && image->getVoxelType() != type_ && !rules::reserve(*image, type_, rules::sizesOf(*image)))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" cannot be retyped \""
                                                        << rules::labelOf(type_) << "\".");
    }

private:
    VoxelTypes type_;
};

} // namespace qel
