#include "Core/private/Deserialization.h"

#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include <qel/Scalar.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

#include "Core/private/ClassicText.h"

namespace qel {

namespace {

class ClassicReader : public std::istringstream
{
public:
    explicit ClassicReader(std::string_view text)
        : std::istringstream(std::string(text))
    {
        imbue(std::locale::classic());
    }

    bool atEnd() { return peek() == traits_type::eof(); }
};

template <class T> bool readLeadingNumber(String const& text, T& value, String& rest)
{
    rest = text;
    // A stream that fails writes to its target all the same.
    T number{};
    ClassicReader reader(text.c_str());
    if (!(reader >> number))
        return false;
    value = number;
    return true;
}

template <class T> std::optional<T> readStrictNumber(std::string_view text)
{
    T number{};
    ClassicReader reader(text);
    if (reader >> std::noskipws >> number && reader.atEnd())
        return number;
    return std::nullopt;
}

// What follows the prefix, or nothing where the text does not begin with it.
std::optional<std::string_view> behind(std::string_view prefix, std::string_view text)
{
    if (text.substr(0, prefix.size()) != prefix)
        return std::nullopt;
    return text.substr(prefix.size());
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> fields;
    for (;;) {
        auto const end = text.find(separator);
        fields.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        text.remove_prefix(end + 1);
    }
}

// Elements of vectors, each by the form of its type; numbers are whole.

template <class T> bool readElement(std::string_view text, T& value)
{
    T number{};
    ClassicReader reader(text);
    if (!(reader >> number) || !reader.atEnd())
        return false;
    value = number;
    return true;
}

// A number here, where a stream would read a character.
bool readElement(std::string_view text, unsigned char& value)
{
    int number = 0;
    if (!readElement(text, number) || number < 0 || number > std::numeric_limits<unsigned char>::max())
        return false;
    value = static_cast<unsigned char>(number);
    return true;
}

template <class V> bool readPoint(std::string_view prefix, std::string_view text, V& value)
{
    auto const components = behind(prefix, text);
    if (!components)
        return false;
    auto const fields = split(*components, '_');
    if (fields.size() != V::dim())
        return false;
    V point;
    for (unsigned int i = 0; i < V::dim(); ++i)
        if (!readElement(fields[i], point[i]))
            return false;
    value = point;
    return true;
}

template <class E> bool readElement(std::string_view text, math::Vector2<E>& value)
{
    return readPoint("@v2:", text, value);
}

template <class E> bool readElement(std::string_view text, math::Vector3<E>& value)
{
    return readPoint("@v3:", text, value);
}

template <class E> bool readElement(std::string_view text, math::Vector4<E>& value)
{
    return readPoint("@v4:", text, value);
}

// The points of a kernel; numbers are what streams make of the fields.
template <std::size_t dimensions, class AddPoint> bool readKernelPoints(std::string_view text, AddPoint const& addPoint)
{
    for (std::string_view const entry : split(text, '+')) {
        auto const fields = split(entry, '_');
        if (fields.size() != dimensions + 1)
            return false;
        std::array<long, dimensions> offset;
        for (std::size_t axis = 0; axis < dimensions; ++axis)
            if (!(ClassicReader(fields[axis]) >> offset[axis]))
                return false;
        double weight = 0;
        if (!(ClassicReader(fields[dimensions]) >> weight))
            return false;
        addPoint(offset, weight);
    }
    return true;
}

std::string_view view(String const& text) { return std::string_view(text.c_str(), text.length()); }

} // namespace

template <> bool Deserialization<int>::doIt(String const& text, int& value, String& rest)
{
    return readLeadingNumber(text, value, rest);
}

template <> bool Deserialization<unsigned int>::doIt(String const& text, unsigned int& value, String& rest)
{
    return readLeadingNumber(text, value, rest);
}

template <> bool Deserialization<long>::doIt(String const& text, long& value, String& rest)
{
    return readLeadingNumber(text, value, rest);
}

template <> bool Deserialization<unsigned long>::doIt(String const& text, unsigned long& value, String& rest)
{
    return readLeadingNumber(text, value, rest);
}

template <> bool Deserialization<double>::doIt(String const& text, double& value, String& rest)
{
    return readLeadingNumber(text, value, rest);
}

template <> bool Deserialization<bool>::doIt(String const& text, bool& value, String& rest)
{
    rest = text;
    bool const isTrue = text == "true";
    if (!isTrue && text != "false")
        return false;
    value = isTrue;
    return true;
}

template <> bool Deserialization<Scalar>::doIt(String const& text, Scalar& value, String& rest)
{
    rest = text;
    auto const store = [&value](auto const& number) {
        if (number)
            value = Scalar(*number);
        return number.has_value();
    };
    std::string_view const number = view(text);
    if (number.find('.') != std::string_view::npos)
        return store(readStrictNumber<double>(number));
    if (number.substr(0, 1) == "-" || number.substr(0, 1) == "+")
        return store(readStrictNumber<long>(number));
    return store(readStrictNumber<unsigned long>(number));
}

template <> bool Deserialization<String>::doIt(String const& text, String& value, String& rest)
{
    rest = text;
    value = text;
    return true;
}

template <class E>
bool Deserialization<math::Vector2<E>>::doIt(String const& text, math::Vector2<E>& value, String& rest)
{
    rest = text;
    return readElement(view(text), value);
}

template <class E>
bool Deserialization<math::Vector3<E>>::doIt(String const& text, math::Vector3<E>& value, String& rest)
{
    rest = text;
    return readElement(view(text), value);
}

template <class E>
bool Deserialization<math::Vector4<E>>::doIt(String const& text, math::Vector4<E>& value, String& rest)
{
    rest = text;
    return readElement(view(text), value);
}

template <class E>
bool Deserialization<container::Vector<E>>::doIt(String const& text, container::Vector<E>& value, String& rest)
{
    rest = text;
    auto const elements = behind("@v:", view(text));
    if (!elements)
        return false;
    container::Vector<E> read;
    if (!elements->empty()) {
        for (std::string_view const field : split(*elements, '#')) {
            E element{};
            if (!readElement(field, element))
                return false;
            read.push_back(element);
        }
    }
    value = read;
    return true;
}

template <> bool Deserialization<kernel::Kernel2D>::doIt(String const& text, kernel::Kernel2D& value, String& rest)
{
    rest = text;
    auto const points = behind("@kernel2D:", view(text));
    if (!points || points->empty())
        return false;
    value.clear();
    return readKernelPoints<2>(
        *points, [&](std::array<long, 2> const& o, double weight) { value.addPoint(o[0], o[1], weight); });
}

template <> bool Deserialization<kernel::Kernel3D>::doIt(String const& text, kernel::Kernel3D& value, String& rest)
{
    rest = text;
    auto const points = behind("@kernel3D:", view(text));
    if (!points || points->empty())
        return false;
    value.clear();
    return readKernelPoints<3>(
        *points, [&](std::array<long, 3> const& o, double weight) { value.addPoint(o[0], o[1], o[2], weight); });
}

#define QEL_POINT_FORMS(E)                                                                                             \
    template struct Deserialization<math::Vector2<E>>;                                                                 \
    template struct Deserialization<math::Vector3<E>>;                                                                 \
    template struct Deserialization<math::Vector4<E>>;
QEL_POINT_FORMS(int)
QEL_POINT_FORMS(unsigned int)
QEL_POINT_FORMS(long)
QEL_POINT_FORMS(unsigned long)
QEL_POINT_FORMS(float)
QEL_POINT_FORMS(double)
#undef QEL_POINT_FORMS

#define QEL_VECTOR_FORMS(E)                                                                                            \
    template struct Deserialization<container::Vector<E>>;                                                             \
    template struct Deserialization<container::Vector<math::Vector2<E>>>;                                              \
    template struct Deserialization<container::Vector<math::Vector3<E>>>;                                              \
    template struct Deserialization<container::Vector<math::Vector4<E>>>;
QEL_VECTOR_FORMS(int)
QEL_VECTOR_FORMS(unsigned int)
QEL_VECTOR_FORMS(long)
QEL_VECTOR_FORMS(unsigned long)
QEL_VECTOR_FORMS(double)
#undef QEL_VECTOR_FORMS
template struct Deserialization<container::Vector<unsigned char>>;

} // namespace qel
