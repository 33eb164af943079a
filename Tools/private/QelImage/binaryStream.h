#pragma once

#include <istream>
#include <ostream>
#include <type_traits>

namespace qel::tools::details {

/// Writes the bytes of a number, in the machine's order.
template <class T> void writeNumber(std::ostream& stream, T number)
{
    static_assert(std::is_arithmetic_v<T>);
    stream.write(reinterpret_cast<char const*>(&number), sizeof(T));
}

/// Reads the bytes of a number; 0 if the stream does not have them.
template <class T> T readNumber(std::istream& stream)
{
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
    T number{};
    if (!stream.read(reinterpret_cast<char*>(&number), sizeof(T)))
        return T{};
    return number;
}

} // namespace qel::tools::details
