#pragma once

#include "Kinds.h"

#include <pybind11/pybind11.h>

namespace binding {

/// Adds the kinds of properties that point to objects: models, tables, transformations.
void addObjectKinds(std::vector<std::unique_ptr<Kind const>>& table);

/// Defines the Python classes of those objects.
void defineObjects(py::module_& module);

} // namespace binding
