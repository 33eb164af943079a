#pragma once

#include "Refusal.h"

#include <qel/Scalar.h>
#include <qel/ScalarArray.h>
#include <qel/String.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>
#include <qel/segmentation/TextureFeatureGroup.h>

#include <pybind11/numpy.h>

#include <limits>
#include <string>
#include <type_traits>

class EnumInfo;

namespace binding {

namespace py = pybind11;

/// The type of a Python object, for texts.
std::string typeName(py::handle object);

/// A whole number between the bounds; a float is refused, for nobody wants it cut in silence.
long toInteger(py::handle object, long low, long high);
unsigned long toUnsigned(py::handle object, unsigned long high);
double toReal(py::handle object);
bool toBool(py::handle object);
/// A text, or a path.
std::string toText(py::handle object);
std::string toStdString(qel::String const& text);
/// A label, or a number that has one.
int toEnumeration(py::handle object, EnumInfo const& info);
/// The label of a number, or the number where it has none.
py::object fromEnumeration(int value, EnumInfo const& info);
/// The elements of a sequence (a list, a tuple, an array), or a refusal that says `what` is wanted.
py::list toSequence(py::handle object, std::string const& what);

/// From Python to the library and back, for each type that a property can have. `name` is for documentation, `hint` for
/// editors.
template <class T, class = void> struct Conversion;

template <class T> struct Conversion<T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>>>
{
    static std::string name() { return std::is_unsigned_v<T> ? "unsigned integer" : "integer"; }
    static std::string hint() { return "_Integer"; }
    static T from(py::handle object)
    {
        if constexpr (std::is_unsigned_v<T>)
            return static_cast<T>(toUnsigned(object, std::numeric_limits<T>::max()));
        else
            return static_cast<T>(toInteger(object, std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()));
    }
    static py::object to(T value) { return py::int_(value); }
};

template <class T> struct Conversion<T, std::enable_if_t<std::is_floating_point_v<T>>>
{
    static std::string name() { return "number"; }
    static std::string hint() { return "_Number"; }
    static T from(py::handle object) { return static_cast<T>(toReal(object)); }
    static py::object to(T value) { return py::float_(value); }
};

template <> struct Conversion<bool>
{
    static std::string name() { return "bool"; }
    static std::string hint() { return "bool"; }
    static bool from(py::handle object) { return toBool(object); }
    static py::object to(bool value) { return py::bool_(value); }
};

template <> struct Conversion<qel::String>
{
    static std::string name() { return "text or path"; }
    static std::string hint() { return "_Path"; }
    static qel::String from(py::handle object)
    {
        std::string const text = toText(object);
        return {text.data(), text.size()};
    }
    static py::object to(qel::String const& value);
};

template <> struct Conversion<qel::segmentation::TextureFeatureTypes>
{
    static std::string name() { return "label"; }
    static std::string hint() { return "_Label"; }
    static qel::segmentation::TextureFeatureTypes from(py::handle object);
    static py::object to(qel::segmentation::TextureFeatureTypes value);
};

template <> struct Conversion<qel::Scalar>
{
    static std::string name() { return "number"; }
    static std::string hint() { return "_Number"; }
    static qel::Scalar from(py::handle object);
    static py::object to(qel::Scalar const& value);
};

template <> struct Conversion<qel::ScalarArray>
{
    static std::string name() { return "numbers"; }
    static std::string hint() { return "_Numbers"; }
    static qel::ScalarArray from(py::handle object);
    static py::object to(qel::ScalarArray const& value);
};

template <> struct Conversion<qel::kernel::Kernel2D>
{
    static std::string name() { return "array of weights, or points (column, row, weight)"; }
    static std::string hint() { return "_Kernel"; }
    static qel::kernel::Kernel2D from(py::handle object);
    static py::object to(qel::kernel::Kernel2D const& value);
};

template <> struct Conversion<qel::kernel::Kernel3D>
{
    static std::string name() { return "array of weights, or points (column, row, plan, weight)"; }
    static std::string hint() { return "_Kernel"; }
    static qel::kernel::Kernel3D from(py::handle object);
    static py::object to(qel::kernel::Kernel3D const& value);
};

/// A fixed number of components; one number stands for all of them.
template <class V, class E, int n> struct FixedConversion
{
    static std::string name() { return std::to_string(n) + " x " + Conversion<E>::name(); }
    static std::string hint()
    {
        return Conversion<E>::hint() == "_Integer" ? "_Integers" + std::to_string(n) : "_Numbers" + std::to_string(n);
    }
    static V from(py::handle object)
    {
        V value;
        if (PyNumber_Check(object.ptr()) && !PySequence_Check(object.ptr())) {
            E const all = Conversion<E>::from(object);
            for (int i = 0; i < n; ++i)
                value[static_cast<unsigned long>(i)] = all;
            return value;
        }
        std::string const wanted = "it takes " + std::to_string(n) + " numbers";
        py::list const elements = toSequence(object, wanted);
        if (elements.size() != n)
            throw Refusal(wanted + ", and not " + std::to_string(elements.size()));
        for (int i = 0; i < n; ++i)
            value[static_cast<unsigned long>(i)] = Conversion<E>::from(elements[static_cast<std::size_t>(i)]);
        return value;
    }
    static py::object to(V const& value)
    {
        py::tuple all(n);
        for (int i = 0; i < n; ++i)
            all[static_cast<std::size_t>(i)] = Conversion<E>::to(value[static_cast<unsigned long>(i)]);
        return all;
    }
    static constexpr int components = n;
    using Element = E;
};
template <class E> struct Conversion<qel::math::Vector2<E>> : FixedConversion<qel::math::Vector2<E>, E, 2>
{};
template <class E> struct Conversion<qel::math::Vector3<E>> : FixedConversion<qel::math::Vector3<E>, E, 3>
{};
template <class E> struct Conversion<qel::math::Vector4<E>> : FixedConversion<qel::math::Vector4<E>, E, 4>
{};

template <class M, class E, int n> struct MatrixConversion
{
    static std::string name() { return "matrix of " + std::to_string(n) + " x " + std::to_string(n); }
    static std::string hint() { return "_Matrix"; }
    static M from(py::handle object)
    {
        auto const array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(object);
        if (!array || array.ndim() != 2 || array.shape(0) != n || array.shape(1) != n) {
            PyErr_Clear();
            throw Refusal("it takes a " + name());
        }
        M value;
        for (int row = 0; row < n; ++row)
            for (int column = 0; column < n; ++column)
                value(static_cast<unsigned int>(row), static_cast<unsigned int>(column)) =
                    static_cast<E>(array.at(row, column));
        return value;
    }
    static py::object to(M const& value)
    {
        py::array_t<E> array({n, n});
        for (int row = 0; row < n; ++row)
            for (int column = 0; column < n; ++column)
                array.mutable_at(row, column) =
                    value(static_cast<unsigned int>(row), static_cast<unsigned int>(column));
        return array;
    }
};
template <class E> struct Conversion<qel::math::Matrix2<E>> : MatrixConversion<qel::math::Matrix2<E>, E, 2>
{};
template <class E> struct Conversion<qel::math::Matrix3<E>> : MatrixConversion<qel::math::Matrix3<E>, E, 3>
{};

template <class T> struct IsFixed : std::false_type
{};
template <class E> struct IsFixed<qel::math::Vector2<E>> : std::true_type
{};
template <class E> struct IsFixed<qel::math::Vector3<E>> : std::true_type
{};
template <class E> struct IsFixed<qel::math::Vector4<E>> : std::true_type
{};

template <class E> struct Conversion<qel::container::Vector<E>>
{
    using V = qel::container::Vector<E>;

    static std::string name()
    {
        if constexpr (IsFixed<E>::value)
            return "array of n x " + std::to_string(Conversion<E>::components) + " " +
                   Conversion<typename Conversion<E>::Element>::name() + "s";
        else
            return (std::is_enum_v<E> ? "sequence of " : "array of ") + Conversion<E>::name() + "s";
    }
    static std::string hint()
    {
        if constexpr (IsFixed<E>::value)
            return "_Points";
        else if constexpr (std::is_enum_v<E>)
            return "_Labels";
        else
            return "_Numbers";
    }
    static V from(py::handle object)
    {
        V value;
        py::list const elements = toSequence(object, "it takes " + name());
        value.reserve(elements.size());
        for (py::handle const element : elements)
            value.push_back(Conversion<E>::from(element));
        return value;
    }
    static py::object to(V const& value)
    {
        auto const count = static_cast<py::ssize_t>(value.size());
        if constexpr (IsFixed<E>::value) {
            constexpr int n = Conversion<E>::components;
            py::array_t<typename Conversion<E>::Element> array({count, static_cast<py::ssize_t>(n)});
            for (py::ssize_t i = 0; i < count; ++i)
                for (int j = 0; j < n; ++j)
                    array.mutable_at(i, j) = value[static_cast<unsigned long>(i)][static_cast<unsigned long>(j)];
            return array;
        } else if constexpr (std::is_enum_v<E>) {
            py::tuple all(count);
            for (py::ssize_t i = 0; i < count; ++i)
                all[static_cast<std::size_t>(i)] = Conversion<E>::to(value[static_cast<unsigned long>(i)]);
            return all;
        } else {
            py::array_t<E> array(count);
            for (py::ssize_t i = 0; i < count; ++i)
                array.mutable_at(i) = value[static_cast<unsigned long>(i)];
            return array;
        }
    }
};

} // namespace binding
