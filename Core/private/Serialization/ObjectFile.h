#pragma once

#include <fstream>
#include <functional>
#include <string>

#include <qel/String.h>

#include "Core/private/Serialization/BinaryArchive.h"

namespace qel::serialization {

/// Whether there is something at `path`. Where that cannot be found out, there is nothing.
bool fileExists(String const& path);

/// Opens a file for reading. Throws SerializationException "Cannot open the <", the path, "> file."
std::ifstream openForReading(String const& path);

/// Reads what stands before the class's own bytes, and returns the class name. Throws SerializationException on a wrong
/// magic number, and archive::Corrupted on a name that is longer than the file.
std::string readObjectHeader(std::istream& stream);

/// Creates or empties a file and lets `write` fill it. Throws SerializationException "Cannot open the <", the path, ">
/// file." and, where not all bytes could be stored, "Cannot write the <", the path, "> file."
void writeFile(String const& path, std::function<void(std::ostream&)> const& write);

/// Writes what stands before the class's own bytes.
void writeObjectHeader(std::ostream& stream, std::string const& className);

/// Throws SerializationException "The <", the path, "> file is corrupted."
[[noreturn]] void refuseCorrupted(String const& path);

/// Does `read`; an archive::Corrupted that comes out of it becomes the report of `refuseCorrupted`.
template <class Read> void readingFrom(String const& path, Read const& read)
{
    try {
        read();
    } catch (archive::Corrupted const&) {
        refuseCorrupted(path);
    }
}

} // namespace qel::serialization
