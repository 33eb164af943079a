#pragma once

#include "Core/private/Rules/Rules.h"

#include <qel/Property.h>

#include <boost/shared_ptr.hpp>

#include <vector>

namespace qel {

template <class T> struct PropertyPrivate
{
    T value{};
    std::vector<boost::shared_ptr<Rules<Property<T>>>> rules;
    String name;
    String description;
};

} // namespace qel
