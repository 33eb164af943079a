#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Gives the image the sizes, spacings and origins of another one. An image of these sizes is not reserved anew.
class RuleEnforceSameSizeAndCalibration : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleEnforceSameSizeAndCalibration(ImageReference const& reference)
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
        rules::Sizes const sizes = rules::sizesOf(*reference);
        if (rules::sizesOf(*image) != sizes && !rules::reserve(*image, image->getVoxelType(), sizes))
            QEL_THROW(RuleException, "The parameter \"" << property.getName()
                                                        << "\" cannot be resized to fit dimensions of \""
                                                        << reference_.getName() << "\".");
        rules::copyCalibration(*reference, *image);
    }

private:
    ImageReference reference_;
};

} // namespace qel
