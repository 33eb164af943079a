#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/Property.h>

namespace qel {

/// The container must have a number of elements.
template <class T> class RuleAssertContainerSize : public Rules<Property<T>>
{
public:
    explicit RuleAssertContainerSize(unsigned long size)
        : size_(size)
    {}

    void apply(Property<T>& property) override
    {
        unsigned long const size = property.get().size();
        if (size != size_)
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" must have a size of " << size_
                                                        << ". Current size is " << size << ".");
    }

private:
    unsigned long size_;
};

} // namespace qel
