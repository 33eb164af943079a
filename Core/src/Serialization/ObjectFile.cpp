#include "Core/private/Serialization/ObjectFile.h"

#include "Core/private/Serialization/MagicNumberObjectFile.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>

#include <boost/filesystem.hpp>

namespace qel::serialization {

namespace {

[[noreturn]] void refuseToOpen(String const& path)
{
    QEL_THROW(SerializationException, "Cannot open the <" << path << "> file.");
}

} // namespace

bool fileExists(String const& path)
{
    boost::system::error_code ignored;
    return boost::filesystem::exists(boost::filesystem::status(path.c_str(), ignored));
}

std::ifstream openForReading(String const& path)
{
    std::ifstream stream(path.c_str(), std::ios::binary);
    if (!stream)
        refuseToOpen(path);
    return stream;
}

std::string readObjectHeader(std::istream& stream)
{
    readMagicNumberObjectFile(stream);
    archive::BinaryInputArchive archive(stream);
    std::string className;
    serialize(archive, className);
    return className;
}

void writeFile(String const& path, std::function<void(std::ostream&)> const& write)
{
    std::ofstream stream(path.c_str(), std::ios::binary);
    if (!stream)
        refuseToOpen(path);
    write(stream);
    // A full disk may show only when the last bytes leave the stream's buffer.
    stream.close();
    if (!stream)
        QEL_THROW(SerializationException, "Cannot write the <" << path << "> file.");
}

void writeObjectHeader(std::ostream& stream, std::string const& className)
{
    stream.write(MAGIC_NUMBER_OBJECT_FILE, sizeof MAGIC_NUMBER_OBJECT_FILE - 1);
    archive::BinaryOutputArchive archive(stream);
    serialize(archive, className);
}

void refuseCorrupted(String const& path)
{
    QEL_THROW(SerializationException, "The <" << path << "> file is corrupted.");
}

} // namespace qel::serialization
