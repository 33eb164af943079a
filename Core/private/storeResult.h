#pragma once

#include "Core/private/PropertyPrivate.h"

#include <type_traits>

namespace qel {

/// Writes an output during the run, in which the setters of all properties are locked.
template <class T> void storeResult(Property<T>& property, std::type_identity_t<T> const& value)
{
    property.getPrivate()->value = value;
}

} // namespace qel
