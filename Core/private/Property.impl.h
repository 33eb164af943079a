#pragma once

// The body of Property<T>. A module that brings a type of its own includes this in one unit and instantiates there:
//     template class QEL_API qel::Property<qel::geometry::LineSet3D*>;

#include "Core/private/Deserialization.h"
#include "Core/private/PropertyPrivate.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <utility>

namespace qel {

template <class T>
Property<T>::Property()
    : m_private(new PropertyPrivate<T>)
{}
template <class T> Property<T>::~Property() { delete m_private; }

template <class T> T Property<T>::get() const { return m_private->value; }
template <class T> Property<T>::operator T() const { return m_private->value; }

template <class T> void Property<T>::set(T value)
{
    if (!isLocked())
        m_private->value = std::move(value);
}

template <class T> Property<T>& Property<T>::operator=(T value)
{
    set(std::move(value));
    return *this;
}

template <class T> Property<T>& Property<T>::operator=(Property const& other)
{
    set(other.m_private->value);
    return *this;
}

template <class T> void Property<T>::applyRules()
{
    // A copy of the list: a rule that changes it would otherwise pull it from under the loop.
    auto const rules = m_private->rules;
    for (auto const& rule : rules) {
        try {
            rule->apply(*this);
        } catch (RuleException& error) {
            ClassicStream message;
            message << "Rule error in property " << m_private->name;
            error.addInfoLevel(throwing::firstLevel(message.text(), __FILE__, __LINE__));
            throw;
        }
    }
}

template <class T> String Property<T>::getName() const { return m_private->name; }
template <class T> String Property<T>::getDescription() const { return m_private->description; }
template <class T> void Property<T>::setDescription(String const& description) { m_private->description = description; }

template <class T> bool Property<T>::read(String const& text, String& rest)
{
    if (isLocked()) {
        rest = text;
        return false;
    }
    return Deserialization<T>::doIt(text, m_private->value, rest);
}

template <class T> PropertyPrivate<T>* Property<T>::getPrivate() const { return m_private; }

} // namespace qel
