#pragma once

#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/Property.h>

namespace qel {

/// Gives the image an interpretation, where it has another one.
class RuleEnforceInterpretation : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleEnforceInterpretation(Interpretations interpretation)
        : interpretation_(interpretation)
    {
        if (!rules::exists(interpretation))
            QEL_THROW(RuleException, "The Interpretation \""
                                         << static_cast<int>(interpretation)
                                         << "\" does not correspond to an existing data interpretation.");
    }

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel* const image = property.get();
        if (image && image->getInterpretation() != interpretation_ && !image->setInterpretation(interpretation_))
            QEL_THROW(RuleException, "Cannot change interpretation of \"" << property.getName() << "\" to \""
                                                                          << rules::labelOf(interpretation_) << "\".");
    }

private:
    Interpretations interpretation_;
};

} // namespace qel
