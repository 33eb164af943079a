#pragma once

#include <locale>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>

#include <qel/String.h>

namespace qel {

inline std::ostream& operator<<(std::ostream& stream, String const& text)
{
    return stream.write(text.c_str(), static_cast<std::streamsize>(text.length()));
}

inline String toString(std::string const& text) { return String(text.data(), text.size()); }

inline std::string toStdString(String const& text) { return std::string(text.c_str(), text.length()); }

/// A text stream that writes numbers in the classic locale, whatever the host's locale is.
class ClassicStream : public std::ostringstream
{
public:
    ClassicStream() { imbue(std::locale::classic()); }

    String text() const { return toString(str()); }
};

/// A value as a text stream writes it. Small integers are written as numbers, not as characters.
template <class T> String toText(T const& value)
{
    ClassicStream stream;
    if constexpr (std::is_same_v<T, unsigned char> || std::is_same_v<T, signed char>)
        stream << static_cast<int>(value);
    else
        stream << value;
    return stream.text();
}

} // namespace qel
