#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include <qel/String.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>

namespace qel::archive {

/// What a BinaryInputArchive throws where the stream does not hold what the reader asks for. It knows no path: whoever
/// opened the file catches it and tells (see serialization::readingFrom).
struct Corrupted
{};

/// Writes plain values to a stream, byte by byte as they lie in memory.
class BinaryOutputArchive
{
public:
    static constexpr bool isReading = false;

    explicit BinaryOutputArchive(std::ostream& stream)
        : m_stream(stream)
    {}

    void writeBytes(void const* bytes, unsigned long count);

private:
    std::ostream& m_stream;
};

/// Reads plain values from a stream, as a BinaryOutputArchive has written them.
class BinaryInputArchive
{
public:
    static constexpr bool isReading = true;

    explicit BinaryInputArchive(std::istream& stream);

    /// Throws Corrupted where fewer bytes are left.
    void readBytes(void* bytes, unsigned long count);
    /// Throws Corrupted unless `count` pieces of at least `leastSize` bytes can follow. Asked before memory is taken on
    /// the word of a file. A stream that cannot tell its length, as a pipe, has room for none.
    void checkRoomFor(unsigned long count, unsigned long leastSize);

private:
    std::istream& m_stream;
    std::streamoff const m_end;
};

} // namespace qel::archive

namespace qel::serialization {

template <class T> struct Form;

/// Writes or reads one value: plain numbers at their own width, strings and vectors behind a count of 64 bits, points
/// component by component. A class whose fields have such forms has one body for both directions.
template <class Archive, class T> void serialize(Archive& archive, T& value)
{
    Form<std::remove_const_t<T>>::serialize(archive, value);
}

/// How values of a type lie in a file, and how many bytes one takes at least. This one: a plain number.
template <class T> struct Form
{
    static_assert(std::is_arithmetic_v<T>, "only plain numbers have this form");
    static constexpr unsigned long leastSize = sizeof(T);

    template <class Archive, class Value> static void serialize(Archive& archive, Value& value)
    {
        if constexpr (!Archive::isReading) {
            archive.writeBytes(&value, sizeof value);
        } else if constexpr (std::is_same_v<T, bool>) {
            // A file may hold any byte; a bool may not.
            unsigned char byte = 0;
            archive.readBytes(&byte, sizeof byte);
            value = byte != 0;
        } else {
            archive.readBytes(&value, sizeof value);
        }
    }
};

/// A count, then as many elements.
template <class E> struct ContainerForm
{
    static constexpr unsigned long leastSize = sizeof(unsigned long);

    template <class Archive, class Value> static void serialize(Archive& archive, Value& value)
    {
        unsigned long count = value.size();
        serialization::serialize(archive, count);
        if constexpr (Archive::isReading) {
            archive.checkRoomFor(count, Form<E>::leastSize);
            value.resize(count);
        }
        for (auto& element : value)
            serialization::serialize(archive, element);
    }
};

template <> struct Form<std::string>
{
    static constexpr unsigned long leastSize = sizeof(unsigned long);

    static void serialize(archive::BinaryOutputArchive& archive, std::string const& value);
    static void serialize(archive::BinaryInputArchive& archive, std::string& value);
};

template <> struct Form<String>
{
    static constexpr unsigned long leastSize = sizeof(unsigned long);

    static void serialize(archive::BinaryOutputArchive& archive, String const& value);
    static void serialize(archive::BinaryInputArchive& archive, String& value);
};

template <class E> struct Form<std::vector<E>> : ContainerForm<E>
{
    static_assert(!std::is_same_v<E, bool>, "its elements are no bytes");
};

template <class E> struct Form<container::Vector<E>> : ContainerForm<E>
{};

/// The components, in order.
template <class Point> struct PointForm
{
    using Component = std::remove_cv_t<std::remove_reference_t<decltype(Point()[0])>>;
    static constexpr unsigned long leastSize = sizeof(Point);

    template <class Archive, class Value> static void serialize(Archive& archive, Value& value)
    {
        for (unsigned int i = 0; i < Point::dim(); ++i)
            Form<Component>::serialize(archive, value[i]);
    }
};

template <class E> struct Form<math::Vector2<E>> : PointForm<math::Vector2<E>>
{};

template <class E> struct Form<math::Vector3<E>> : PointForm<math::Vector3<E>>
{};

} // namespace qel::serialization
