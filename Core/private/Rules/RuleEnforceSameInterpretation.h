#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// Gives the image the interpretation of another one.
class RuleEnforceSameInterpretation : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleEnforceSameInterpretation(ImageReference const& reference)
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
        Interpretations const old = image->getInterpretation();
        Interpretations const wanted = reference->getInterpretation();
        if (old != wanted && !image->setInterpretation(wanted))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" (" << rules::labelOf(old)
                                                        << ") cannot be interpreted like \"" << reference_.getName()
                                                        << "\" (" << rules::labelOf(wanted) << ").");
    }

private:
    ImageReference reference_;
};

} // namespace qel
