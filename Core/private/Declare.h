#pragma once

#include "Core/private/PropertyPrivate.h"
#include "Core/private/Rules/RuleAssertNotNull.h"

#include <boost/make_shared.hpp>

#include <type_traits>

namespace qel {

template <class T> void pushRule(Property<T>& property, boost::shared_ptr<Rules<Property<T>>> rule)
{
    property.getPrivate()->rules.push_back(rule);
}

/// Refuses a null image or object. Stands first in each list, so that what is missing is reported as not set.
struct AssertNotNull
{
    template <class T> void operator()(Property<T>& property) const
    {
        pushRule<T>(property, boost::make_shared<RuleAssertNotNull<Property<T>>>());
    }
};
inline constexpr AssertNotNull ASSERT_NOT_NULL{};

/// One property of an algorithm's init(): its default, its name, which is its description too, and its rules in order.
template <class T, class... AddRules>
void declare(Property<T>& property, char const* name, std::type_identity_t<T> const& defaultValue,
             AddRules const&... addRules)
{
    property.set(defaultValue);
    property.getPrivate()->name = name;
    property.setDescription(name);
    (addRules(property), ...);
}

} // namespace qel
