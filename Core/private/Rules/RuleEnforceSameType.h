#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Gives the image the voxel type of another one, and lets it keep its sizes.
class RuleEnforceSameType : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleEnforceSameType(ImageReference const& reference)
        : reference_(reference)
    {
        if (!reference.isSet())
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel const* const reference = reference_.getImage();
        if (!reference)
            QEL_THROW(RuleException, "The parameter \"" << reference_.getName() << "\" must be set.");
        ImageModel* const image = property.get();
        if (!image)
            return;
        VoxelTypes const type = reference->getVoxelType();
        if (image->getVoxelType() != type && !rules::reserve(*image, type, rules::sizesOf(*image)))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" cannot be retyped to fit \""
                                                        << reference_.getName() << "\".");
    }

private:
    ImageReference reference_;
};

} // namespace qel
