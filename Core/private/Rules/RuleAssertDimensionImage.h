#pragma once

#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

namespace qel {

/// The image must have the size of another one along up to four axes. All axes that differ are reported together.
template <class P> class RuleAssertDimensionImage : public Rules<P>
{
public:
    /// The value of a component that is not used.
    static constexpr unsigned int unused = -1;

    explicit RuleAssertDimensionImage(ImageReference const& reference, unsigned int component1 = unused,
                                      unsigned int component2 = unused, unsigned int component3 = unused,
                                      unsigned int component4 = unused)
        : reference_(reference)
        , components_{component1, component2, component3, component4}
    {
        if (component1 == unused)
            QEL_THROW(RuleException, "The first component of the rule must be set.");
        if (!reference.isSet())
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(P& property) override
    {
        ImageModel const* const other = reference_.getImage();
        if (!other)
            QEL_THROW(RuleException, "The parameter \"" << reference_.getName() << "\" must be set.");
        ImageModel const* const image = property.get();
        if (!image)
            return;
        ClassicStream failures;
        char const* separator = "";
        for (unsigned int const number : components_) {
            if (number == unused)
                continue;
            auto const component = static_cast<Components>(number);
            unsigned long const expected = other->getNumOf(component);
            unsigned long const size = image->getNumOf(component);
            if (size == expected)
                continue;
            failures << separator << "The number of " << helper::ComponentToString(component) << " of the parameter \""
                     << property.getName() << "\" must be " << expected << ". Current size is " << size << ".";
            separator = "\n";
        }
        if (*separator)
            QEL_THROW(RuleException, failures.text());
    }

private:
    ImageReference reference_;
    unsigned int components_[4];
};

} // namespace qel
