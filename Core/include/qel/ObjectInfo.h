#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel {

class Object;
class ObjectInfoPrivate;

/// An entry of the registry of classes whose objects can live in a file of their own.
class QEL_API ObjectInfo
{
public:
    /// The entry of a class, such as "LineSet3D". Throws RuntimeError "No object of type ObjectInfo for the class name
    /// : " and the name where there is none.
    static ObjectInfo& getObjectInfoFromName(String const& className);

    /// A new object of the class, owned by the caller.
    Object* createInstance() const;
    String getClassName() const;

    ObjectInfo(ObjectInfo const& other);
    ObjectInfo& operator=(ObjectInfo const& other);
    ~ObjectInfo();

private:
    friend class ObjectInfoPrivate;
    explicit ObjectInfo(ObjectInfoPrivate const& info);

    ObjectInfoPrivate* m_private;
};

} // namespace qel
