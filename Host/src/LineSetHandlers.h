#pragma once

#include "PropertyHandler.h"

namespace qel::geometry {
class LineSet3D;
}

namespace host {

/// For pointers to line sets; null for other kinds.
std::unique_ptr<PropertyHandler> lineSet(qel::BaseProperty& property, std::string const& name, Direction direction);

/// What `show` tells of a line set's file.
void describeLineSet(std::string const& path, Json& object);

} // namespace host
