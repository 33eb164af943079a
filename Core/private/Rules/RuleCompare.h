#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <type_traits>

namespace qel {

namespace detail {

struct NotEqualTo
{
    static constexpr char const* word = "not equal to";
    template <class T1, class T2> static bool holds(T1 const& a, T2 const& b) { return a != b; }
};

struct GreaterOrEqualThan
{
    static constexpr char const* word = "greater than or equal to";
    template <class T1, class T2> static bool holds(T1 const& a, T2 const& b) { return a >= b; }
};

/// What a text shows of a value: itself, or the address of an image or another object.
template <class T> auto shown(T const& value)
{
    if constexpr (std::is_pointer_v<T>)
        return static_cast<void const*>(value);
    else
        return value;
}

} // namespace detail

/// The value must compare with that of another property. Of images and other objects the addresses are compared.
template <class P1, class P2, class Op> class RuleCompare : public Rules<P1>
{
public:
    explicit RuleCompare(P2 const* other)
        : other_(other)
    {
        if (!other)
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }

    void apply(P1& property) override
    {
        auto const value = property.get();
        auto const other = other_->get();
        if constexpr (std::is_pointer_v<decltype(property.get())>)
            if (!value)
                return;
        if (!Op::holds(value, other))
            QEL_THROW(RuleException, "The parameter \"" << property.getName() << "\" (value=" << detail::shown(value)
                                                        << ") must be " << Op::word << " the parameter \""
                                                        << other_->getName() << "\" (value=" << detail::shown(other)
                                                        << ").");
    }

private:
    P2 const* other_;
};

} // namespace qel
