#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/Property.h>

namespace qel {

/// The side of the limit on which a value must lie.
enum LimitKind : unsigned int
{
    LIMIT_GREATER = 0,
    LIMIT_LESS,
    LIMIT_GREATER_OR_EQUAL,
    LIMIT_LESS_OR_EQUAL
};

/// The value must lie on one side of a limit. `kind` is one of LimitKind; another one is reported when the rule runs.
template <class T> class RuleLimitedValue : public Rules<Property<T>>
{
public:
    RuleLimitedValue(T const& limit, unsigned int kind)
        : limit_(limit)
        , kind_(kind)
    {}

    void apply(Property<T>& property) override
    {
        T const value = property.get();
        switch (kind_) {
        case LIMIT_GREATER:
            if (limit_ >= value)
                fail(property, "greater than");
            break;
        case LIMIT_LESS:
            if (limit_ <= value)
                fail(property, "less than");
            break;
        case LIMIT_GREATER_OR_EQUAL:
            if (limit_ > value)
                fail(property, "greater than or equal to");
            break;
        case LIMIT_LESS_OR_EQUAL:
            if (limit_ < value)
                fail(property, "less than or equal to");
            break;
        default:
            QEL_THROW(RuleException, "The type of the rule is unknown.");
        }
    }

private:
    void fail(Property<T>& property, char const* relation) const
    {
        QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" (value=" << property.get()
                                                    << ") must be " << relation << " <" << limit_ << ">.");
    }

    T limit_;
    unsigned int kind_;
};

} // namespace qel
