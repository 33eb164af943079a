#include <qel/ObjectInfo.h>

#include "Core/private/ObjectInfoPrivate.h"
#include "Core/private/Throw.h"

namespace qel {

std::map<std::string, ObjectInfo>& ObjectInfoPrivate::allObjectInfo()
{
    static std::map<std::string, ObjectInfo> all;
    return all;
}

ObjectInfo& ObjectInfoPrivate::createInfo(char const* name, Creator creator)
{
    return allObjectInfo().insert_or_assign(name, ObjectInfo(ObjectInfoPrivate{name, creator})).first->second;
}

ObjectInfo::ObjectInfo(ObjectInfoPrivate const& info)
    : m_private(new ObjectInfoPrivate(info))
{}

ObjectInfo::ObjectInfo(ObjectInfo const& other)
    : ObjectInfo(*other.m_private)
{}

ObjectInfo& ObjectInfo::operator=(ObjectInfo const& other)
{
    *m_private = *other.m_private;
    return *this;
}

ObjectInfo::~ObjectInfo() { delete m_private; }

ObjectInfo& ObjectInfo::getObjectInfoFromName(String const& className)
{
    auto& all = ObjectInfoPrivate::allObjectInfo();
    auto const found = all.find(toStdString(className));
    if (found == all.end())
        QEL_THROW(RuntimeError, "No object of type ObjectInfo for the class name : " << className);
    return found->second;
}

Object* ObjectInfo::createInstance() const { return m_private->creator(); }

String ObjectInfo::getClassName() const { return m_private->name; }

} // namespace qel
