#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/Property.h>

namespace qel {

/// Which ends belong to a range.
enum BoundsKind : unsigned int
{
    BOUNDS_CLOSED = 0,
    BOUNDS_LOW_OPEN = 1,
    BOUNDS_HIGH_OPEN = 2,
    BOUNDS_OPEN = BOUNDS_LOW_OPEN | BOUNDS_HIGH_OPEN
};

/// The value must lie between two others. A NaN lies nowhere.
template <class T> class RuleInRange : public Rules<Property<T>>
{
public:
    RuleInRange(T const& low, T const& high, BoundsKind bounds)
        : low_(low)
        , high_(high)
        , bounds_(bounds)
    {}

    void apply(Property<T>& property) override
    {
        T const value = property.get();
        bool const lowOpen = bounds_ & BOUNDS_LOW_OPEN;
        bool const highOpen = bounds_ & BOUNDS_HIGH_OPEN;
        if ((lowOpen ? low_ < value : low_ <= value) && (highOpen ? value < high_ : value <= high_))
            return;
        // A closed end is "[" and an open one "]", at either side.
        QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" must be in the range "
                                                    << (lowOpen ? "]" : "[") << low_ << " ; " << high_
                                                    << (highOpen ? "]" : "[") << ".");
    }

private:
    T low_;
    T high_;
    BoundsKind bounds_;
};

} // namespace qel
