#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

namespace qel {

/// The value must be above 0. A NaN is not.
template <class P> class RuleAssertPositiveOnly : public Rules<P>
{
public:
    void apply(P& property) override
    {
        if (!(property.get() > 0))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" must be strictly positive.");
    }
};

} // namespace qel
