#pragma once

#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Refuses an output that is the input, where it would have to become another voxel type: its voxels would be lost.
class RuleKeepInputType : public Rules<Property<ImageModel*>>
{
public:
    RuleKeepInputType(ImageReference const& input, VoxelTypes type)
        : m_input(input)
        , m_model(input)
        , m_type(type)
    {}
    /// The output takes the type of `model`.
    RuleKeepInputType(ImageReference const& input, ImageReference const& model)
        : m_input(input)
        , m_model(model)
        , m_takesTypeOfModel(true)
    {}

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel const* const image = property.get();
        ImageModel const* const model = m_model.getImage();
        if (!image || (m_takesTypeOfModel && !model))
            return;
        VoxelTypes const type = m_takesTypeOfModel ? model->getVoxelType() : m_type;
        if (image->getVoxelType() != type &&
            helper::underlyingImage(m_input.getImage()) == helper::underlyingImage(image))
            QEL_THROW(RuleException, "The parameter \"" << m_input.getName()
                                                        << "\" cannot be used as output image if it must be retyped.");
    }

private:
    ImageReference m_input;
    ImageReference m_model;
    VoxelTypes m_type = QEL_UINT8;
    bool m_takesTypeOfModel = false;
};

} // namespace qel
