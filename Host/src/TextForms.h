#pragma once

#include "Json.h"

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

#include <charconv>
#include <string>
#include <type_traits>
#include <vector>

namespace host {

// Each type that a property can have gives a text (the form from which the property can be read again, where it has
// one) and a JSON value.

std::string toStdString(qel::String const& text);
qel::String toQelString(std::string const& text);

/// The words in one text, with the separator between them.
std::string joined(std::vector<std::string> const& words, std::string const& separator);

/// `digits` with ".0" where it would read as an integer.
std::string withPoint(std::string digits);

/// The shortest text that reads as the same double; "NaN", "Infinity", "-Infinity" for those.
std::string formOf(double value);
std::string formOf(bool value);
std::string formOf(qel::String const& value);
/// With a point in a real and a sign before a signed integer, which is how they are told apart.
std::string formOf(qel::Scalar const& value);
std::string formOf(qel::ScalarArray const& value);
std::string formOf(qel::kernel::Kernel2D const& value);
std::string formOf(qel::kernel::Kernel3D const& value);
/// A label; a number where there is none.
std::string formOf(qel::segmentation::TextureFeatureTypes value);

template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
std::string formOf(T value)
{
    return std::to_string(value);
}
inline std::string formOf(float value) { return formOf(static_cast<double>(value)); }

template <class T> std::string formOf(qel::math::Vector2<T> const& value)
{
    return "@v2:" + formOf(value[0]) + "_" + formOf(value[1]);
}
template <class T> std::string formOf(qel::math::Vector3<T> const& value)
{
    return "@v3:" + formOf(value[0]) + "_" + formOf(value[1]) + "_" + formOf(value[2]);
}
template <class T> std::string formOf(qel::math::Vector4<T> const& value)
{
    return "@v4:" + formOf(value[0]) + "_" + formOf(value[1]) + "_" + formOf(value[2]) + "_" + formOf(value[3]);
}
template <class T> std::string formOf(qel::container::Vector<T> const& value)
{
    std::vector<std::string> elements;
    for (unsigned long i = 0; i < value.size(); ++i)
        elements.push_back(formOf(value[i]));
    return "@v:" + joined(elements, "#");
}

inline Json jsonOf(float value) { return jsonOf(static_cast<double>(value)); }
inline Json jsonOf(bool value) { return value; }
template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0> Json jsonOf(T value)
{
    return value;
}
Json jsonOf(qel::String const& value);
Json jsonOf(qel::Scalar const& value);
Json jsonOf(qel::ScalarArray const& value);
Json jsonOf(qel::kernel::Kernel2D const& value);
Json jsonOf(qel::kernel::Kernel3D const& value);
Json jsonOf(qel::segmentation::TextureFeatureTypes value);
template <class T> Json jsonOf(qel::math::Vector2<T> const& value)
{
    return Json::array({jsonOf(value[0]), jsonOf(value[1])});
}
template <class T> Json jsonOf(qel::math::Vector3<T> const& value)
{
    return Json::array({jsonOf(value[0]), jsonOf(value[1]), jsonOf(value[2])});
}
template <class T> Json jsonOf(qel::math::Vector4<T> const& value)
{
    return Json::array({jsonOf(value[0]), jsonOf(value[1]), jsonOf(value[2]), jsonOf(value[3])});
}
template <class T> Json jsonOf(qel::container::Vector<T> const& value)
{
    Json list = Json::array();
    for (unsigned long i = 0; i < value.size(); ++i)
        list.push_back(jsonOf(value[i]));
    return list;
}
/// Matrices: an array of rows.
template <class M> Json jsonOfMatrix(M const& value, int size)
{
    Json rows = Json::array();
    for (int row = 0; row < size; ++row) {
        Json entries = Json::array();
        for (int column = 0; column < size; ++column)
            entries.push_back(jsonOf(value(row, column)));
        rows.push_back(entries);
    }
    return rows;
}
template <class T> Json jsonOf(qel::math::Matrix2<T> const& value) { return jsonOfMatrix(value, 2); }
template <class T> Json jsonOf(qel::math::Matrix3<T> const& value) { return jsonOfMatrix(value, 3); }
/// A matrix cannot be read from text; it is shown as in JSON.
template <class T> std::string formOf(qel::math::Matrix2<T> const& value) { return toText(jsonOf(value)); }
template <class T> std::string formOf(qel::math::Matrix3<T> const& value) { return toText(jsonOf(value)); }

} // namespace host
