#pragma once

#include <map>
#include <string>

#include <qel/ObjectInfo.h>

namespace qel {

/// What stands behind an ObjectInfo, and the registry of all classes that live in object files.
class ObjectInfoPrivate
{
public:
    using Creator = Object* (*)();

    /// All registered classes by name. Filled by static initialisation, and only read later.
    static std::map<std::string, ObjectInfo>& allObjectInfo();
    /// Makes the entry of a class; an earlier entry of that name gives way.
    static ObjectInfo& createInfo(char const* name, Creator creator);

    String name;
    Creator creator;
};

} // namespace qel

/// Lets Data::load make objects of a class by its name. Used once, in the unit of the class, with its static BaseNew().
#define QEL_REGISTER_OBJECT(Class)                                                                                     \
    [[maybe_unused]] static bool const objectIsRegistered##Class =                                                     \
        (::qel::ObjectInfoPrivate::createInfo(#Class, &Class::BaseNew), true);
