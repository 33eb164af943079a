#include "Core/private/Serialization/BinaryArchive.h"

#include "Core/private/ClassicText.h"

namespace qel::archive {

namespace {

/// Where the stream ends, or -1 where it cannot tell. The stream stays where it stands.
std::streamoff endOf(std::istream& stream)
{
    std::streambuf* const buffer = stream.rdbuf();
    std::streampos const here = buffer->pubseekoff(0, std::ios::cur, std::ios::in);
    if (here == std::streampos(-1))
        return -1;
    std::streamoff const end = buffer->pubseekoff(0, std::ios::end, std::ios::in);
    buffer->pubseekpos(here, std::ios::in);
    return end;
}

} // namespace

void BinaryOutputArchive::writeBytes(void const* bytes, unsigned long count)
{
    m_stream.write(static_cast<char const*>(bytes), static_cast<std::streamsize>(count));
}

BinaryInputArchive::BinaryInputArchive(std::istream& stream)
    : m_stream(stream)
    , m_end(endOf(stream))
{}

void BinaryInputArchive::readBytes(void* bytes, unsigned long count)
{
    if (!m_stream.read(static_cast<char*>(bytes), static_cast<std::streamsize>(count)))
        throw Corrupted();
}

void BinaryInputArchive::checkRoomFor(unsigned long count, unsigned long leastSize)
{
    if (count == 0)
        return;
    std::streamoff const here = m_stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in);
    if (here < 0 || here >= m_end || count > static_cast<unsigned long>(m_end - here) / leastSize)
        throw Corrupted();
}

} // namespace qel::archive

namespace qel::serialization {

void Form<std::string>::serialize(archive::BinaryOutputArchive& archive, std::string const& value)
{
    unsigned long const length = value.size();
    serialization::serialize(archive, length);
    archive.writeBytes(value.data(), length);
}

void Form<std::string>::serialize(archive::BinaryInputArchive& archive, std::string& value)
{
    unsigned long length = 0;
    serialization::serialize(archive, length);
    archive.checkRoomFor(length, 1);
    value.resize(length);
    archive.readBytes(value.data(), length);
}

void Form<String>::serialize(archive::BinaryOutputArchive& archive, String const& value)
{
    Form<std::string>::serialize(archive, toStdString(value));
}

void Form<String>::serialize(archive::BinaryInputArchive& archive, String& value)
{
    std::string text;
    Form<std::string>::serialize(archive, text);
    value = toString(text);
}

} // namespace qel::serialization
