#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Rules/TypePromotion.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Gives the image the voxel type that holds an operation on two others. It keeps its sizes, and must be neither of the
/// two if it must change: their voxels would be lost before they are read.
class RuleEnforceTypePromotionImageImage : public Rules<Property<ImageModel*>>
{
public:
    /// `mode`: one of rules::PromotionMode; another one is reported when the rule runs.
    RuleEnforceTypePromotionImageImage(ImageReference const& first, ImageReference const& second, unsigned int mode)
        : first_(first)
        , second_(second)
        , mode_(mode)
    {
        if (!first.isSet() || !second.isSet())
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel const* const first = first_.getImage();
        if (!first)
            QEL_THROW(RuleException, "The parameter \"" << first_.getName() << "\" must be set.");
        ImageModel const* const second = second_.getImage();
        if (!second)
            QEL_THROW(RuleException, "The parameter \"" << second_.getName() << "\" must be set.");
        ImageModel* const image = property.get();
        if (!image)
            return;
        if (!rules::isPromotionMode(mode_))
            QEL_THROW(RuleException, "unsupported type of rule");
        VoxelTypes const type = rules::promoted(mode_, first->getVoxelType(), second->getVoxelType());
        if (image->getVoxelType() == type)
            return;
        for (ImageReference const* input : {&first_, &second_})
            if (input->getImage() == image)
                QEL_THROW(RuleException, "The parameter \""
                                             << input->getName()
                                             << "\" cannot be used as output image if it must be retyped.");
        if (!rules::reserve(*image, type, rules::sizesOf(*image)))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" cannot be retyped into \""
                                                        << rules::labelOf(type) << "\".");
    }

private:
    ImageReference first_;
    ImageReference second_;
    unsigned int mode_;
};

} // namespace qel
