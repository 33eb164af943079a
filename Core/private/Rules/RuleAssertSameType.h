#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// The image must have the voxel type of another one.
template <class P> class RuleAssertSameType : public Rules<P>
{
public:
    explicit RuleAssertSameType(ImageReference const& other)
        : other_(other)
    {
        if (!other.isSet())
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(P& property) override
    {
        ImageModel const* const other = other_.getImage();
        if (!other)
            QEL_THROW(RuleException, "The parameter \"" << other_.getName() << "\" must be set.");
        ImageModel const* const image = property.get();
        if (image && image->getVoxelType() != other->getVoxelType())
            QEL_THROW(RuleException, "The parameters \"" << other_.getName() << "\" and \"" << property.getName()
                                                         << "\" must have the same type.");
    }

private:
    ImageReference other_;
};

} // namespace qel
