#pragma once

#include "Errors.h"
#include "Json.h"

#include <qel/ImageModel.h>

#include <memory>
#include <string>
#include <vector>

namespace qel {
class BaseAlgorithm;
class BaseProperty;
} // namespace qel

namespace host {

class Outputs;
class PropertyHandler;

enum class Direction
{
    Input,
    Output
};

using PropertyHandlers = std::vector<std::unique_ptr<PropertyHandler>>;

/// All that the host does with one property of an algorithm: it shows it, sets it from the command line, owns what a
/// pointer points to, and prints or stores what a run left in it. One class for each family of kinds; the table in
/// PropertyKinds.cpp tells which.
///
/// The operations are called in the order in which they stand here. Those that a kind does not need do nothing.
class PropertyHandler
{
public:
    PropertyHandler(std::string name, Direction direction)
        : m_name(std::move(name))
        , m_direction(direction)
    {}
    PropertyHandler(PropertyHandler const&) = delete;
    PropertyHandler& operator=(PropertyHandler const&) = delete;
    virtual ~PropertyHandler() = default;

    std::string const& name() const { return m_name; }
    Direction direction() const { return m_direction; }

    /// The kind, for people: "double", "input image", "Vector2<int>".
    virtual std::string kind() const = 0;
    /// The value that the property has now, in text form.
    virtual std::string text() const = 0;
    /// The labels of an enumeration.
    virtual std::vector<std::string> labels() const { return {}; }

    /// Whether the command line may give a value. A result that is printed takes none, unless it can be stored too.
    virtual bool takesValue() const { return m_direction == Direction::Input || !hasResult(); }
    /// Takes the value from the command line. Reads no file. Throws UsageError.
    virtual void assign(std::string const& text) = 0;
    /// Looks for other properties that the value names. Throws UsageError.
    virtual void connect(PropertyHandlers const&) {}
    /// Tells which files it will write.
    virtual void expect(Outputs&) const {}

    /// Before the run: reads files, creates objects, sets pointers.
    virtual void prepare() {}

    /// After a successful run: writes files.
    virtual void store(Outputs&) {}
    /// Whether the run left a value here to print, other than an image.
    virtual bool hasResult() const { return false; }
    virtual Json json() const { return nullptr; }
    /// What was stored where, for people; empty where nothing was.
    virtual std::string report() const { return ""; }

    /// The image that the property has, or will have; null for other kinds and for no image.
    virtual qel::ImageModel* image() { return nullptr; }
    virtual bool isImage() const { return false; }

protected:
    [[noreturn]] void refuse(std::string const& text, std::string const& reason) const
    {
        throw UsageError("\"" + text + "\" is no value for " + m_name + ": " + reason);
    }

private:
    std::string m_name;
    Direction m_direction;
};

/// The handler for one property, by the table of kinds.
std::unique_ptr<PropertyHandler> handlerOf(qel::BaseProperty& property, std::string const& name, Direction direction);

/// The handlers of all properties of an algorithm: inputs, members that are no listed properties, outputs.
PropertyHandlers handlersOf(qel::BaseAlgorithm& algorithm);

/// Null where there is no property of that name.
PropertyHandler* findHandler(PropertyHandlers const& handlers, std::string const& name);

/// The names of all handlers, and of those that are images.
std::vector<std::string> namesOf(PropertyHandlers const& handlers);
std::vector<std::string> imageNamesOf(PropertyHandlers const& handlers);

} // namespace host
