#pragma once

#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <type_traits>
#include <typeinfo>

namespace qel::helper {

/// The name as the run-time type information gives it, without the mark of a type that is local to a unit.
inline char const* plainTypeName(std::type_info const& type)
{
    char const* name = type.name();
    return *name == '*' ? name + 1 : name;
}

template <class Target, class Source> Target safe_cast(Source* source)
{
    Target const target = dynamic_cast<Target>(source);
    if (target == nullptr)
        QEL_THROW(UnexpectedError, "bad cast when casting " << plainTypeName(typeid(Source*)) << " into "
                                                            << plainTypeName(typeid(Target)));
    return target;
}

} // namespace qel::helper
