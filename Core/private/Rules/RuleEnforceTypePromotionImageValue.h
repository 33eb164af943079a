#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Rules/TypePromotion.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Gives the image the voxel type that holds an operation on another one and a value. It keeps its sizes, and must not
/// be the other one if it must change: the voxels would be lost before they are read.
class RuleEnforceTypePromotionImageValue : public Rules<Property<ImageModel*>>
{
public:
    /// `mode`: one of rules::PromotionMode; another one is reported when the rule runs.
    RuleEnforceTypePromotionImageValue(ImageReference const& input, Property<double> const* value, unsigned int mode)
        : input_(input)
        , value_(value)
        , mode_(mode)
    {
        if (!input.isSet() || !value)
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel const* const input = input_.getImage();
        if (!input)
            QEL_THROW(RuleException, "The parameter \"" << input_.getName() << "\" must be set.");
        ImageModel* const image = property.get();
        if (!image)
            return;
        if (!rules::isPromotionMode(mode_))
            QEL_THROW(RuleException, "unsupported type of rule");
        VoxelTypes const type = rules::promotedWithValue(mode_, input->getVoxelType(), value_->get());
        if (image->getVoxelType() == type)
            return;
        if (input == image)
            QEL_THROW(RuleException, "The parameter \"" << property.getName()
                                                        << "\" cannot be used as output image if it must be retyped.");
        if (!rules::reserve(*image, type, rules::sizesOf(*image)))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" cannot be retyped into \""
                                                        << rules::labelOf(type) << "\".");
    }

private:
    ImageReference input_;
    Property<double> const* value_;
    unsigned int mode_;
};

} // namespace qel
