#pragma once

#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Refuses an output that is an input, where it would have to take other sizes, those of `model`: the voxels of the
/// input would be lost before anybody has read them.
class RuleKeepInputSize : public Rules<Property<ImageModel*>>
{
public:
    RuleKeepInputSize(ImageReference const& input, ImageReference const& model)
        : m_input(input)
        , m_model(model)
    {}

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel const* const image = property.get();
        ImageModel const* const model = m_model.getImage();
        if (!image || !model)
            return;
        if (helper::underlyingImage(m_input.getImage()) == helper::underlyingImage(image) &&
            rules::sizesOf(*image) != rules::sizesOf(*model))
            QEL_THROW(RuleException, "The parameter \"" << m_input.getName()
                                                        << "\" cannot be used as output image if it must be resized.");
    }

private:
    ImageReference m_input;
    ImageReference m_model;
};

} // namespace qel
