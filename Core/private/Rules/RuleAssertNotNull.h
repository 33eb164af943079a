#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

namespace qel {

template <class P> class RuleAssertNotNull : public Rules<P>
{
public:
    void apply(P& property) override
    {
        if (property.get() == nullptr)
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" must be set.");
    }
};

} // namespace qel
