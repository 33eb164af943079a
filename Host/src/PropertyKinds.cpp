#include "ImageHandlers.h"
#include "LineSetHandlers.h"
#include "ModelHandlers.h"
#include "PropertyHandler.h"
#include "Suggestion.h"
#include "TextForms.h"
#include "TransformationHandlers.h"

#include <qel/BaseAlgorithm.h>
#include <qel/EnumInfo.h>
#include <qel/PropertyEnumeration.h>
#include <qel/morphology/PropertyMorphologicalLut2D.h>
#include <qel/morphology/PropertyMorphologicalLut3D.h>
#include <qel/point_operations/BitShift.h>
#include <qel/point_operations/InvertImage.h>

#include <charconv>

namespace host {

namespace {

// ---- The names of types

template <class T> struct Name;
#define HOST_NAME(Type, text)                                                                                          \
    template <> struct Name<Type>                                                                                      \
    {                                                                                                                  \
        static std::string get() { return text; }                                                                      \
    };
HOST_NAME(bool, "bool")
HOST_NAME(int, "int")
HOST_NAME(unsigned char, "unsigned char")
HOST_NAME(unsigned int, "unsigned int")
HOST_NAME(long, "long")
HOST_NAME(unsigned long, "unsigned long")
HOST_NAME(float, "float")
HOST_NAME(double, "double")
HOST_NAME(qel::String, "String")
HOST_NAME(qel::Scalar, "Scalar")
HOST_NAME(qel::ScalarArray, "ScalarArray")
HOST_NAME(qel::kernel::Kernel2D, "Kernel2D")
HOST_NAME(qel::kernel::Kernel3D, "Kernel3D")
HOST_NAME(qel::segmentation::TextureFeatureTypes, "TextureFeatureTypes")
HOST_NAME(qel::morphology::MorphologicalLut2D, "MorphologicalLut2D")
HOST_NAME(qel::morphology::MorphologicalLut3D, "MorphologicalLut3D")
#undef HOST_NAME
#define HOST_NAME(Template, text)                                                                                      \
    template <class T> struct Name<Template<T>>                                                                        \
    {                                                                                                                  \
        static std::string get() { return text "<" + Name<T>::get() + ">"; }                                           \
    };
HOST_NAME(qel::math::Vector2, "Vector2")
HOST_NAME(qel::math::Vector3, "Vector3")
HOST_NAME(qel::math::Vector4, "Vector4")
HOST_NAME(qel::math::Matrix2, "Matrix2")
HOST_NAME(qel::math::Matrix3, "Matrix3")
HOST_NAME(qel::container::Vector, "Vector")
#undef HOST_NAME

// ---- Values

// A text stream reads "3px" as 3 and "-1" as a large unsigned number; on a command line both are slips.
template <class T> bool looksLikeNumber(std::string text)
{
    if (!text.empty() && text[0] == '+')
        text.erase(0, 1);
    T value{};
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

std::vector<std::string> labelsOf(EnumInfo const& info)
{
    std::vector<std::string> all;
    for (unsigned long i = 0; i < info.getNumOfLabels(); ++i)
        if (std::string label = toStdString(info.getLabelFromlabelIndex(i)); !label.empty())
            all.push_back(std::move(label));
    return all;
}

/// A value, which the property reads from its own text form.
template <class T> class ValueHandler : public PropertyHandler
{
public:
    ValueHandler(qel::Property<T>& property, std::string name, Direction direction)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
    {}

    std::string kind() const override { return Name<T>::get(); }
    std::string text() const override { return formOf(m_property.get()); }
    std::vector<std::string> labels() const override
    {
        if constexpr (std::is_same_v<T, qel::segmentation::TextureFeatureGroup>)
            return labelsOf(qel::segmentation::textureFeatureTypesInfo());
        return {};
    }

    void assign(std::string const& text) override
    {
        if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
            if (!looksLikeNumber<T>(text))
                refuse(text, "it takes a number of type " + kind());
        }
        qel::String rest;
        if (m_property.read(toQelString(text), rest))
            return;
        if constexpr (std::is_same_v<T, bool>)
            refuse(text, "the nearest is \"" + nearestName(text, {"true", "false"}) + "\"");
        if constexpr (!hasTextForm)
            refuse(text, "a " + kind() + " has no text form");
        refuse(text, "it takes a " + kind() + " such as " + example());
    }

    bool hasResult() const override { return direction() == Direction::Output; }
    Json json() const override { return jsonOf(m_property.get()); }

private:
    static constexpr bool hasTextForm =
        !(std::is_same_v<T, qel::ScalarArray> || std::is_same_v<T, qel::math::Matrix2<float>> ||
          std::is_same_v<T, qel::math::Matrix2<double>> || std::is_same_v<T, qel::math::Matrix3<float>> ||
          std::is_same_v<T, qel::math::Matrix3<double>>);

    static std::string example()
    {
        T value{};
        if constexpr (requires { value.resize(2); })
            value.resize(2);
        if constexpr (std::is_same_v<T, qel::kernel::Kernel2D>)
            value.addPoint(0, 0, 1);
        if constexpr (std::is_same_v<T, qel::kernel::Kernel3D>)
            value.addPoint(0, 0, 0, 1);
        return formOf(value);
    }

    qel::Property<T>& m_property;
};

/// An integer with labels.
class EnumerationHandler : public PropertyHandler
{
public:
    EnumerationHandler(qel::PropertyEnumeration& property, std::string name, Direction direction)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
    {}

    std::string kind() const override { return "enumeration " + toStdString(m_property.getEnumInfo()->getEnumName()); }

    std::string text() const override
    {
        EnumInfo const& info = *m_property.getEnumInfo();
        int const value = m_property.get();
        return info.exists(value) ? toStdString(info.getLabelFromValue(value)) : std::to_string(value);
    }

    std::vector<std::string> labels() const override { return labelsOf(*m_property.getEnumInfo()); }

    void assign(std::string const& text) override
    {
        qel::String rest;
        if (!m_property.read(toQelString(text), rest))
            refuse(text, "the nearest is \"" + nearestName(text, labels()) + "\"");
    }

    bool hasResult() const override { return direction() == Direction::Output; }
    Json json() const override { return text(); }

private:
    qel::PropertyEnumeration& m_property;
};

// ---- Vectors of points behind a pointer

/// The host owns the vector. An output is always given one, which is printed after the run.
template <class Point, class Pointer> class PointsHandler : public PropertyHandler
{
public:
    PointsHandler(qel::Property<Pointer>& property, std::string name, Direction direction)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
    {}

    std::string kind() const override
    {
        return "Vector<" + Name<Point>::get() + ">" + (std::is_same_v<Pointer, Points*> ? "*" : " const*");
    }

    std::string text() const override
    {
        Points const* const points = m_property.get();
        return points ? formOf(*points) : "null";
    }

    void assign(std::string const& text) override
    {
        m_given = text != "null";
        if (!m_given)
            return;
        std::string const prefix = "@v:";
        if (text.compare(0, prefix.size(), prefix) != 0)
            refuse(text, "it takes points such as @v:" + formOf(Point()) + "#" + formOf(Point()));
        if (text.size() == prefix.size())
            return;
        // Each element is read by its own form.
        qel::Property<Point> element;
        std::size_t begin = prefix.size();
        while (begin <= text.size()) {
            std::size_t const end = std::min(text.find('#', begin), text.size());
            std::string const form = text.substr(begin, end - begin);
            qel::String rest;
            if (!element.read(toQelString(form), rest))
                refuse(text, "\"" + form + "\" is no point such as " + formOf(Point()));
            m_points.push_back(element.get());
            begin = end + 1;
        }
    }

    void prepare() override
    {
        if (m_given || direction() == Direction::Output)
            m_property.set(&m_points);
    }

    bool hasResult() const override { return direction() == Direction::Output; }
    Json json() const override { return jsonOf(m_points); }

private:
    using Points = qel::container::Vector<Point>;

    qel::Property<Pointer>& m_property;
    Points m_points;
    bool m_given = false;
};

// ---- Look-up tables behind a pointer

/// The property reads the table from a file, and owns it.
template <class Table> class TableHandler : public PropertyHandler
{
public:
    TableHandler(qel::Property<Table*>& property, std::string name, Direction direction)
        : PropertyHandler(std::move(name), direction)
        , m_property(property)
    {}

    std::string kind() const override { return Name<Table>::get() + "*"; }
    std::string text() const override { return m_text; }

    void assign(std::string const& text) override
    {
        if (text != "null" && text.rfind("@path:", 0) != 0)
            refuse(text, "it takes a file such as @path:FILE");
        m_text = text;
    }

    void prepare() override
    {
        qel::String error;
        if (m_text != "null" && !m_property.read(toQelString(m_text), error))
            throw HostError(toStdString(error));
    }

private:
    qel::Property<Table*>& m_property;
    std::string m_text = "null";
};

/// A kind that the host does not know: shown as such, and left alone.
class UnknownHandler : public PropertyHandler
{
public:
    using PropertyHandler::PropertyHandler;
    std::string kind() const override { return "unknown kind"; }
    std::string text() const override { return "unknown"; }
    void assign(std::string const& text) override
    {
        if (text != "null")
            refuse(text, "this program cannot set properties of its kind");
    }
};

// ---- The table of kinds

using Maker = std::unique_ptr<PropertyHandler> (*)(qel::BaseProperty&, std::string const&, Direction);

template <class T> std::unique_ptr<PropertyHandler> value(qel::BaseProperty& base, std::string const& name, Direction d)
{
    auto* const property = dynamic_cast<qel::Property<T>*>(&base);
    return property ? std::make_unique<ValueHandler<T>>(*property, name, d) : nullptr;
}

std::unique_ptr<PropertyHandler> enumeration(qel::BaseProperty& base, std::string const& name, Direction d)
{
    auto* const property = dynamic_cast<qel::PropertyEnumeration*>(&base);
    return property ? std::make_unique<EnumerationHandler>(*property, name, d) : nullptr;
}

std::unique_ptr<PropertyHandler> inputImage(qel::BaseProperty& base, std::string const& name, Direction d)
{
    using Pointer = qel::ImageModel const*;
    auto* const property = dynamic_cast<qel::Property<Pointer>*>(&base);
    return property ? std::make_unique<ImageHandlerFor<Pointer>>(*property, name, d, ImageArgument::Role::Input)
                    : nullptr;
}

std::unique_ptr<PropertyHandler> outputImage(qel::BaseProperty& base, std::string const& name, Direction d)
{
    using Pointer = qel::ImageModel*;
    auto* const property = dynamic_cast<qel::Property<Pointer>*>(&base);
    auto const role = d == Direction::Output ? ImageArgument::Role::Output : ImageArgument::Role::InOut;
    return property ? std::make_unique<ImageHandlerFor<Pointer>>(*property, name, d, role) : nullptr;
}

template <class Point>
std::unique_ptr<PropertyHandler> points(qel::BaseProperty& base, std::string const& name, Direction d)
{
    using Points = qel::container::Vector<Point>;
    if (auto* const property = dynamic_cast<qel::Property<Points*>*>(&base))
        return std::make_unique<PointsHandler<Point, Points*>>(*property, name, d);
    if (auto* const property = dynamic_cast<qel::Property<Points const*>*>(&base))
        return std::make_unique<PointsHandler<Point, Points const*>>(*property, name, d);
    return nullptr;
}

template <class Table>
std::unique_ptr<PropertyHandler> table(qel::BaseProperty& base, std::string const& name, Direction d)
{
    auto* const property = dynamic_cast<qel::Property<Table*>*>(&base);
    return property ? std::make_unique<TableHandler<Table>>(*property, name, d) : nullptr;
}

std::unique_ptr<PropertyHandler> model(qel::BaseProperty& base, std::string const& name, Direction d)
{
    using Model = qel::classification::TextureClassificationModel;
    if (auto* const property = dynamic_cast<qel::Property<Model*>*>(&base))
        return std::make_unique<ModelHandlerFor<Model*>>(*property, name, d);
    if (auto* const property = dynamic_cast<qel::Property<Model const*>*>(&base))
        return std::make_unique<ModelHandlerFor<Model const*>>(*property, name, d);
    if (auto* const property = dynamic_cast<qel::Property<Model**>*>(&base))
        return std::make_unique<NewModelHandler>(*property, name, d);
    return nullptr;
}

using qel::container::Vector;
using qel::math::Matrix2;
using qel::math::Matrix3;
using qel::math::Vector2;
using qel::math::Vector3;
using qel::math::Vector4;

// One entry for each kind. The first that knows the property takes it: an enumeration is an int, too.
Maker const kinds[] = {
    inputImage,
    outputImage,
    enumeration,
    value<bool>,
    value<int>,
    value<unsigned int>,
    value<long>,
    value<unsigned long>,
    value<double>,
    value<qel::String>,
    value<qel::Scalar>,
    value<qel::ScalarArray>,
    value<qel::kernel::Kernel2D>,
    value<qel::kernel::Kernel3D>,
    value<Vector2<int>>,
    value<Vector2<unsigned int>>,
    value<Vector2<long>>,
    value<Vector2<unsigned long>>,
    value<Vector2<double>>,
    value<Vector3<int>>,
    value<Vector3<unsigned int>>,
    value<Vector3<long>>,
    value<Vector3<unsigned long>>,
    value<Vector3<double>>,
    value<Vector4<int>>,
    value<Vector4<unsigned int>>,
    value<Vector4<long>>,
    value<Vector4<unsigned long>>,
    value<Vector4<double>>,
    value<Matrix2<float>>,
    value<Matrix2<double>>,
    value<Matrix3<float>>,
    value<Matrix3<double>>,
    value<Vector<int>>,
    value<Vector<long>>,
    value<Vector<unsigned char>>,
    value<Vector<unsigned int>>,
    value<Vector<unsigned long>>,
    value<Vector<double>>,
    value<Vector<Vector2<int>>>,
    value<Vector<Vector3<int>>>,
    value<qel::segmentation::TextureFeatureGroup>,
    model,
    lineSet,
    points<Vector2<int>>,
    points<Vector2<unsigned int>>,
    points<Vector2<long>>,
    points<Vector2<unsigned long>>,
    points<Vector2<double>>,
    points<Vector3<int>>,
    points<Vector3<unsigned int>>,
    points<Vector3<long>>,
    points<Vector3<unsigned long>>,
    points<Vector3<double>>,
    points<Vector4<int>>,
    points<Vector4<unsigned int>>,
    points<Vector4<long>>,
    points<Vector4<unsigned long>>,
    points<Vector4<double>>,
    table<qel::morphology::MorphologicalLut2D>,
    table<qel::morphology::MorphologicalLut3D>,
    transformation,
};

// Members that are public, but no listed properties.
void addMembers(qel::BaseAlgorithm& algorithm, PropertyHandlers& handlers)
{
    if (auto* const invert = dynamic_cast<qel::point_operations::InvertImage*>(&algorithm))
        handlers.push_back(handlerOf(invert->numOfBits, "numOfBits", Direction::Input));
    if (auto* const shift = dynamic_cast<qel::point_operations::BitShift*>(&algorithm)) {
        handlers.push_back(handlerOf(shift->shiftCount, "shiftCount", Direction::Input));
        handlers.push_back(handlerOf(shift->shiftRight, "shiftRight", Direction::Input));
    }
}

} // namespace

std::unique_ptr<PropertyHandler> handlerOf(qel::BaseProperty& property, std::string const& name, Direction direction)
{
    for (Maker const make : kinds) {
        if (std::unique_ptr<PropertyHandler> handler = make(property, name, direction))
            return handler;
    }
    return std::make_unique<UnknownHandler>(name, direction);
}

PropertyHandlers handlersOf(qel::BaseAlgorithm& algorithm)
{
    PropertyHandlers handlers;
    auto const add = [&](qel::BaseProperty* property, Direction direction) {
        if (property)
            handlers.push_back(handlerOf(*property, toStdString(property->getName()), direction));
    };
    for (unsigned long i = 0; i < algorithm.getNumOfInputProperties(); ++i)
        add(algorithm.getInputProperty(i), Direction::Input);
    addMembers(algorithm, handlers);
    for (unsigned long i = 0; i < algorithm.getNumOfOutputProperties(); ++i)
        add(algorithm.getOutputProperty(i), Direction::Output);
    return handlers;
}

PropertyHandler* findHandler(PropertyHandlers const& handlers, std::string const& name)
{
    for (std::unique_ptr<PropertyHandler> const& handler : handlers) {
        if (handler->name() == name)
            return handler.get();
    }
    return nullptr;
}

std::vector<std::string> namesOf(PropertyHandlers const& handlers)
{
    std::vector<std::string> names;
    for (std::unique_ptr<PropertyHandler> const& handler : handlers)
        names.push_back(handler->name());
    return names;
}

std::vector<std::string> imageNamesOf(PropertyHandlers const& handlers)
{
    std::vector<std::string> names;
    for (std::unique_ptr<PropertyHandler> const& handler : handlers) {
        if (handler->isImage())
            names.push_back(handler->name());
    }
    return names;
}

} // namespace host
