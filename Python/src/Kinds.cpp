#include "Kinds.h"

#include "Objects.h"

#include <qel/EnumInfo.h>
#include <qel/ImageModel.h>
#include <qel/PropertyEnumeration.h>

namespace binding {

namespace {

std::vector<std::string> labelsOf(EnumInfo const& info)
{
    std::vector<std::string> all;
    for (unsigned long i = 0; i < info.getNumOfLabels(); ++i) {
        if (std::string label = toStdString(info.getLabelFromlabelIndex(i)); !label.empty())
            all.push_back(std::move(label));
    }
    return all;
}

// The library's own text form, which every kind of value may be given in, too.
bool readText(qel::BaseProperty& property, py::handle value)
{
    if (!PyUnicode_Check(value.ptr()))
        return false;
    std::string const text = toText(value);
    qel::String rest;
    if (!property.read(qel::String(text.data(), text.size()), rest))
        throw Refusal("the text \"" + text + "\" is no value for it");
    return true;
}

/// A value.
template <class T> class ValueKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<T>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return Conversion<T>::name(); }
    std::string hint() const override { return Conversion<T>::hint(); }
    std::vector<std::string> labels(qel::BaseProperty&) const override
    {
        if constexpr (std::is_same_v<T, qel::segmentation::TextureFeatureGroup>)
            return labelsOf(qel::segmentation::textureFeatureTypesInfo());
        return {};
    }
    void assign(qel::BaseProperty& property, py::handle value, Kept&) const override
    {
        if constexpr (!std::is_same_v<T, qel::String>) {
            if (readText(property, value))
                return;
        }
        static_cast<qel::Property<T>&>(property).set(Conversion<T>::from(value));
    }
    py::object value(qel::BaseProperty& property, Kept const&) const override
    {
        return Conversion<T>::to(static_cast<qel::Property<T>&>(property).get());
    }
};

/// An integer with labels: a label, or a number that has one.
class EnumerationKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::PropertyEnumeration*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty& property) const override
    {
        std::string text;
        for (std::string const& label : labels(property))
            text += (text.empty() ? "" : " | ") + label;
        return text;
    }
    std::string hint() const override { return "_Label"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept&) const override
    {
        auto& property = static_cast<qel::PropertyEnumeration&>(base);
        property = toEnumeration(value, *property.getEnumInfo());
    }
    py::object value(qel::BaseProperty& base, Kept const&) const override
    {
        auto& property = static_cast<qel::PropertyEnumeration&>(base);
        return fromEnumeration(property.get(), *property.getEnumInfo());
    }
    std::vector<std::string> labels(qel::BaseProperty& property) const override
    {
        return labelsOf(*static_cast<qel::PropertyEnumeration&>(property).getEnumInfo());
    }
};

/// An image. Who runs the algorithm makes it of an array.
template <class Pointer> class ImageKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Pointer>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return "image"; }
    std::string hint() const override { return "_Image"; }
    void assign(qel::BaseProperty& property, py::handle value, Kept&) const override
    {
        static_cast<qel::Property<Pointer>&>(property).set(
            value.is_none() ? nullptr : static_cast<Pointer>(value.cast<py::capsule>().get_pointer<qel::ImageModel>()));
    }
    py::object value(qel::BaseProperty&, Kept const&) const override { return py::none(); }
    ImageRole role() const override
    {
        return std::is_same_v<Pointer, qel::ImageModel*> ? ImageRole::Write : ImageRole::Read;
    }
};

/// Points behind a pointer. An output is always given a list, which is the result.
template <class Point, class Pointer> class PointsKind : public Kind
{
    using Points = qel::container::Vector<Point>;

public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Pointer>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return Conversion<Points>::name(); }
    std::string hint() const override { return "_Points"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept& kept) const override
    {
        auto& property = static_cast<qel::Property<Pointer>&>(base);
        if (value.is_none()) {
            property.set(nullptr);
            kept = nullptr;
            return;
        }
        auto const points = std::make_shared<Points>(Conversion<Points>::from(value));
        property.set(points.get());
        kept = points;
    }
    py::object value(qel::BaseProperty& property, Kept const&) const override
    {
        Points const* const points = static_cast<qel::Property<Pointer>&>(property).get();
        return points ? Conversion<Points>::to(*points) : py::none();
    }
    void prepare(qel::BaseProperty& base, Kept& kept) const override
    {
        auto const points = std::make_shared<Points>();
        static_cast<qel::Property<Pointer>&>(base).set(points.get());
        kept = points;
    }
};

/// A kind that is not in the table.
class UnknownKind : public Kind
{
public:
    bool fits(qel::BaseProperty&) const override { return true; }
    std::string name(qel::BaseProperty&) const override { return "text form"; }
    std::string hint() const override { return "_Any"; }
    void assign(qel::BaseProperty& property, py::handle value, Kept&) const override
    {
        if (!value.is_none() && !readText(property, value))
            throw Refusal("it takes a text, and not a value of type " + typeName(value));
    }
    py::object value(qel::BaseProperty&, Kept const&) const override { return py::none(); }
};

using qel::container::Vector;
using qel::math::Matrix2;
using qel::math::Matrix3;
using qel::math::Vector2;
using qel::math::Vector3;
using qel::math::Vector4;

using Table = std::vector<std::unique_ptr<Kind const>>;

template <class... Values> void addValues(Table& table)
{
    (table.push_back(std::make_unique<ValueKind<Values>>()), ...);
}

template <class... Points> void addPoints(Table& table)
{
    (table.push_back(std::make_unique<PointsKind<Points, Vector<Points>*>>()), ...);
    (table.push_back(std::make_unique<PointsKind<Points, Vector<Points> const*>>()), ...);
}

// The first that fits a property takes it: an enumeration is an int, too.
Table makeTable()
{
    Table table;
    table.push_back(std::make_unique<ImageKind<qel::ImageModel const*>>());
    table.push_back(std::make_unique<ImageKind<qel::ImageModel*>>());
    table.push_back(std::make_unique<EnumerationKind>());
    addValues<bool, int, unsigned int, long, unsigned long, double, qel::String, qel::Scalar, qel::ScalarArray,
              qel::kernel::Kernel2D, qel::kernel::Kernel3D>(table);
    addValues<Vector2<int>, Vector2<unsigned int>, Vector2<long>, Vector2<unsigned long>, Vector2<double>>(table);
    addValues<Vector3<int>, Vector3<unsigned int>, Vector3<long>, Vector3<unsigned long>, Vector3<double>>(table);
    addValues<Vector4<int>, Vector4<unsigned int>, Vector4<long>, Vector4<unsigned long>, Vector4<double>>(table);
    addValues<Matrix2<float>, Matrix2<double>, Matrix3<float>, Matrix3<double>>(table);
    addValues<Vector<int>, Vector<long>, Vector<unsigned char>, Vector<unsigned int>, Vector<unsigned long>,
              Vector<double>, Vector<Vector2<int>>, Vector<Vector3<int>>>(table);
    addPoints<Vector2<int>, Vector2<unsigned int>, Vector2<long>, Vector2<unsigned long>, Vector2<double>>(table);
    addPoints<Vector3<int>, Vector3<unsigned int>, Vector3<long>, Vector3<unsigned long>, Vector3<double>>(table);
    addPoints<Vector4<int>, Vector4<unsigned int>, Vector4<long>, Vector4<unsigned long>, Vector4<double>>(table);
    addValues<qel::segmentation::TextureFeatureGroup>(table);
    addObjectKinds(table);
    table.push_back(std::make_unique<UnknownKind>());
    return table;
}

} // namespace

Kind const& kindOf(qel::BaseProperty& property)
{
    static auto const& table = *new Table(makeTable());
    for (auto const& kind : table) {
        if (kind->fits(property))
            return *kind;
    }
    return *table.back();
}

} // namespace binding
