#include <qel/Data.h>

#include <qel/Exception.h>
#include <qel/ObjectInfo.h>

#include "Core/private/Serialization/ObjectFile.h"
#include "Core/private/Throw.h"

namespace qel {

Data::Data() = default;
Data::Data(Data const& other) = default;
Data& Data::operator=(Data const& other) = default;
Data::~Data() noexcept(false) = default;

Ref<Data> Data::load(String const& path)
{
    if (!serialization::fileExists(path))
        QEL_THROW(SerializationException, "The file " << path << " does not exists.");
    std::string className;
    {
        std::ifstream stream = serialization::openForReading(path);
        serialization::readingFrom(path, [&] { className = serialization::readObjectHeader(stream); });
    }
    Ref<Object> const object = ObjectInfo::getObjectInfoFromName(toString(className)).createInstance();
    Ref<Data> data;
    if (auto* const readable = dynamic_cast<Data*>(object.get())) {
        data = readable;
        data->read(path);
    }
    return data;
}

} // namespace qel
