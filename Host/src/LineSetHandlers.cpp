#include "LineSetHandlers.h"

#include "Outputs.h"
#include "TextForms.h"

#include <qel/geometry/LineSet3D.h>

namespace host {

namespace {

using qel::geometry::LineSet3D;

Json jsonOf(LineSet3D const& lines)
{
    Json indices = Json::array();
    for (unsigned long index : lines.getIndices()) {
        if (index == LineSet3D::stop)
            indices.push_back(-1);
        else
            indices.push_back(index);
    }
    return {{"coords", host::jsonOf(lines.getCoords())}, {"indices", indices}};
}

bool endsWith(std::string const& path, std::string const& ending)
{
    return path.size() > ending.size() && path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

/// The host owns the line set. An input is read from a file; an output is always given one, which is printed after the
/// run, and stored where a path is given.
template <class Pointer> class LineSetHandler : public PropertyHandler
{
public:
    LineSetHandler(qel::Property<Pointer>& property, std::string name, Direction direction)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
    {}

    std::string kind() const override { return direction() == Direction::Output ? "output line set" : "line set"; }
    std::string text() const override { return m_property.get() ? toText(jsonOf(*m_property.get())) : "null"; }

    bool takesValue() const override { return true; }
    void assign(std::string const& text) override
    {
        m_isNull = text == "null";
        m_path = m_isNull ? "" : text;
        if (m_isNull)
            return;
        if (text.empty())
            refuse(text, "it takes the path of a line set's file");
        if (direction() == Direction::Output && !endsWith(text, ".qelo") && !endsWith(text, ".txt"))
            refuse(text, "a line set is stored as .qelo or exported as .txt");
    }

    void expect(Outputs& outputs) const override
    {
        if (direction() == Direction::Output && !m_path.empty())
            outputs.expect(m_path);
    }

    void prepare() override
    {
        bool const isInput = direction() == Direction::Input;
        if (m_isNull || (isInput && m_path.empty()))
            return;
        if (isInput)
            m_lines.read(toQelString(m_path));
        m_property.set(&m_lines);
    }

    void store(Outputs& outputs) override
    {
        if (direction() == Direction::Input || m_path.empty())
            return;
        qel::String const path = toQelString(outputs.temporaryFor(m_path));
        if (endsWith(m_path, ".txt"))
            m_lines.exportAsKesraMesh(path);
        else
            m_lines.write(path, qel::BINARY, true);
    }

    bool hasResult() const override { return direction() == Direction::Output; }
    Json json() const override { return jsonOf(m_lines); }

private:
    qel::Property<Pointer>& m_property;
    LineSet3D m_lines;
    std::string m_path; // empty for none
    bool m_isNull = false;
};

template <class Pointer>
std::unique_ptr<PropertyHandler> handlerFor(qel::BaseProperty& base, std::string const& name, Direction direction)
{
    auto* const property = dynamic_cast<qel::Property<Pointer>*>(&base);
    return property ? std::make_unique<LineSetHandler<Pointer>>(*property, name, direction) : nullptr;
}

} // namespace

std::unique_ptr<PropertyHandler> lineSet(qel::BaseProperty& property, std::string const& name, Direction direction)
{
    if (auto handler = handlerFor<LineSet3D*>(property, name, direction))
        return handler;
    return handlerFor<LineSet3D const*>(property, name, direction);
}

void describeLineSet(std::string const& path, Json& object)
{
    LineSet3D lines;
    lines.read(toQelString(path));
    // The last line may have no separator behind it.
    unsigned long numOfLines = 0;
    bool isInLine = false;
    for (unsigned long index : lines.getIndices()) {
        numOfLines += !isInLine && index != LineSet3D::stop;
        isInLine = index != LineSet3D::stop;
    }
    object["vertices"] = lines.getCoords().size();
    object["lines"] = numOfLines;
}

} // namespace host
