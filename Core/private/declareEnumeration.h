#pragma once

#include <qel/PropertyEnumeration.h>

#include <initializer_list>

namespace qel {

/// One enumeration of an algorithm's init(): its description, its default, its name, and the rule that its value is one
/// of the enumeration, and none of the `excluded` ones. `info` must outlive the property: a function-local static.
void declareEnumeration(PropertyEnumeration& property, char const* name, int defaultValue, EnumInfo& info,
                        std::initializer_list<int> excluded = {});

} // namespace qel
