#pragma once

#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/Property.h>

namespace qel {

/// Gives the image an interpretation, where it has another one, and reports a refusal with both.
class RuleSetInterpretation : public Rules<Property<ImageModel*>>
{
public:
    explicit RuleSetInterpretation(Interpretations interpretation)
        : interpretation_(interpretation)
    {}

    void apply(Property<ImageModel*>& property) override
    {
        ImageModel* const image = property.get();
        if (!image)
            return;
        Interpretations const old = image->getInterpretation();
        if (old != interpretation_ && !image->setInterpretation(interpretation_))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" cannot be re-interpreted from \""
                                                        << rules::labelOf(old) << "\" to \""
                                                        << rules::labelOf(interpretation_) << "\".");
    }

private:
    Interpretations interpretation_;
};

} // namespace qel
