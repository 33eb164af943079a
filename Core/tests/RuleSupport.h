#pragma once

#include "Core/private/Rules/Asserts.h"
#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/HostImage.h"

#include <limits>
#include <string>
#include <type_traits>

namespace qel::test {

/// A property with a name, a value and rules.
template <class T> class Named : public Property<T>
{
public:
    template <class... AddRules>
    explicit Named(char const* name, std::type_identity_t<T> const& value = T(), AddRules const&... addRules)
    {
        declare(*this, name, value, addRules...);
    }
    using Property<T>::operator=;
};

/// Applies the rules of the property, and gives the message of the first that fails, or "".
template <class T> std::string failureOf(Property<T>& property)
{
    try {
        property.applyRules();
    } catch (RuleException& error) {
        return error.getInfoLevel(0).message.c_str();
    }
    return "";
}

/// The source path that the first failing rule records.
template <class T> std::string pathOfFailure(Property<T>& property)
{
    try {
        property.applyRules();
    } catch (RuleException& error) {
        return error.getInfoLevel(0).fileName.c_str();
    }
    return "";
}

} // namespace qel::test
