// Texts that a host passes on to properties: command lines, scripts, files of parameters.
#include "Core/private/Deserialization.h"
#include "Fuzz/Require.h"

#include <qel/EnumInfo.h>
#include <qel/Exception.h>
#include <qel/PropertyEnumeration.h>
#include <qel/Scalar.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

using namespace qel;
using fuzz::require;

namespace {

// What was read cannot be compared where it may be NaN: a text stream reads none, so all that is read can be.
template <class T> void read(String const& text, T const& start)
{
    T value = start;
    String rest;
    bool const isRead = Deserialization<T>::doIt(text, value, rest);
    require(rest == text, "the text is handed back");
    bool constexpr keepsPoints = std::is_same_v<T, kernel::Kernel2D> || std::is_same_v<T, kernel::Kernel3D>;
    if constexpr (!keepsPoints)
        require(isRead || value == start, "a text that does not fit leaves the value alone");

    T again = start;
    require(Deserialization<T>::doIt(text, again, rest) == isRead, "a text reads the same each time");
    require(again == value, "a text gives the same value each time");
}

template <class T> container::Vector<T> oneOf(T const& element)
{
    container::Vector<T> vector;
    vector.push_back(element);
    return vector;
}

void readEnumeration(String const& text)
{
    static EnumInfo info("Fruit", "APPLE = 0, PEAR, PLUM = 7, QUINCE = PLUM");
    PropertyEnumeration property;
    property.setEnumInfo(&info);
    property = 1;
    String rest;
    bool const isRead = property.read(text, rest);
    require(isRead ? info.exists(property.get()) : property.get() == 1, "an enumeration holds a value that it knows");
}

void declareEnumeration(String const& text)
{
    try {
        EnumInfo const info("Fruit", text.c_str());
        for (unsigned long index = 0; index < info.getNumOfValues(); ++index) {
            int const value = info.getValueFromValueIndex(index);
            require(info.exists(value), "a value that is listed is known");
            // A label that comes twice keeps its first value's list, and names the later one.
            for (unsigned long label = 0; label < info.getNumOfLabelsAtValue(value); ++label)
                require(info.exists(info.getLabelFromValue(value, label)), "a label that is listed is known");
        }
    } catch (RuntimeError const&) { // the one way to refuse a declaration
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::string const bytes(reinterpret_cast<char const*>(data) + 1, size - 1);
    String const text(bytes.c_str());
    switch (data[0] % 24) {
    case 0:
        read<int>(text, 7);
        break;
    case 1:
        read<unsigned int>(text, 7);
        break;
    case 2:
        read<long>(text, 7);
        break;
    case 3:
        read<unsigned long>(text, 7);
        break;
    case 4:
        read<double>(text, 7.0);
        break;
    case 5:
        read<bool>(text, true);
        break;
    case 6:
        read<Scalar>(text, Scalar(7L));
        break;
    case 7:
        read<String>(text, "seven");
        break;
    case 8:
        read(text, math::Vector2<int>(7, 8));
        break;
    case 9:
        read(text, math::Vector2<double>(7, 8));
        break;
    case 10:
        read(text, math::Vector3<unsigned int>(7, 8, 9));
        break;
    case 11:
        read(text, math::Vector3<float>(7, 8, 9));
        break;
    case 12:
        read(text, math::Vector4<long>(7, 8, 9, 10));
        break;
    case 13:
        read(text, math::Vector4<unsigned long>(7, 8, 9, 10));
        break;
    case 14:
        read(text, oneOf(7));
        break;
    case 15:
        read(text, oneOf(7.0));
        break;
    case 16:
        read(text, oneOf<unsigned char>(7));
        break;
    case 17:
        read(text, oneOf(math::Vector2<int>(7, 8)));
        break;
    case 18:
        read(text, oneOf(math::Vector3<double>(7, 8, 9)));
        break;
    case 19:
        read(text, kernel::Kernel2D());
        break;
    case 20:
        read(text, kernel::Kernel3D());
        break;
    case 21:
        readEnumeration(text);
        break;
    default:
        declareEnumeration(text);
        break;
    }
    return 0;
}
