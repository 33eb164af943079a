#pragma once

#include "Conversions.h"

#include <qel/BaseProperty.h>

#include <memory>
#include <string>
#include <vector>

namespace binding {

enum class ImageRole
{
    None,
    Read,
    Write
};

/// What a property keeps alive as long as its algorithm: points, models, tables.
using Kept = std::shared_ptr<void>;

/// What holds for all properties of one type: how a Python object becomes their value, and back. Kinds have no state.
class Kind
{
public:
    virtual ~Kind() = default;

    /// Whether the property is of this kind.
    virtual bool fits(qel::BaseProperty& property) const = 0;
    /// For documentation: what may be given.
    virtual std::string name(qel::BaseProperty& property) const = 0;
    /// For editors: a type of the stub.
    virtual std::string hint() const = 0;

    /// Throws Refusal.
    virtual void assign(qel::BaseProperty& property, py::handle value, Kept& kept) const = 0;
    virtual py::object value(qel::BaseProperty& property, Kept const& kept) const = 0;

    /// Gives an output that nobody set what the run is to fill.
    virtual void prepare(qel::BaseProperty&, Kept&) const {}

    /// The labels of an enumeration.
    virtual std::vector<std::string> labels(qel::BaseProperty&) const { return {}; }
    virtual ImageRole role() const { return ImageRole::None; }
};

/// The kind of a property, by the table of kinds. A kind that this program does not know has a text form at most.
Kind const& kindOf(qel::BaseProperty& property);

} // namespace binding
