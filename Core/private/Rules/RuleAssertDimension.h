#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// The image must have one size along one axis.
template <class P> class RuleAssertDimension : public Rules<P>
{
public:
    RuleAssertDimension(Components component, unsigned long size)
        : component_(component)
        , size_(size)
    {}

    void apply(P& property) override
    {
        ImageModel const* const image = property.get();
        if (!image)
            return;
        unsigned long const size = image->getNumOf(component_);
        if (size != size_)
            QEL_THROW(RuleException, "The number of " << helper::ComponentToString(component_) << " of the parameter \""
                                                      << property.getName() << "\" must be " << size_
                                                      << ". Current size is " << size << ".");
    }

private:
    Components component_;
    unsigned long size_;
};

} // namespace qel
