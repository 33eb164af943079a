#pragma once

#include <cstring>
#include <istream>

#include <qel/Exception.h>

#include "Core/private/Throw.h"

namespace qel::serialization {

/// The first four bytes of each object file.
inline constexpr char MAGIC_NUMBER_OBJECT_FILE[] = "QELO";

/// Reads the first four bytes of an object file. Throws SerializationException where they are others, or fewer.
inline void readMagicNumberObjectFile(std::istream& stream)
{
    char magic[sizeof MAGIC_NUMBER_OBJECT_FILE] = {};
    stream.read(magic, sizeof magic - 1);
    if (std::memcmp(magic, MAGIC_NUMBER_OBJECT_FILE, sizeof magic) != 0)
        QEL_THROW(SerializationException, "Invalid magic number: <" << magic << ">.");
}

} // namespace qel::serialization
