#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/Property.h>

namespace qel {

/// The container must have an element.
template <class T> class RuleAssertContainerNoEmpty : public Rules<Property<T>>
{
public:
    void apply(Property<T>& property) override
    {
        if (property.get().size() == 0)
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" should not be empty.");
    }
};

} // namespace qel
