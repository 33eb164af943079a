#pragma once

#include "PropertyHandler.h"

namespace host {

/// For pointers to handlers of transformations; null for other kinds.
std::unique_ptr<PropertyHandler> transformation(qel::BaseProperty& property, std::string const& name,
                                                Direction direction);

} // namespace host
