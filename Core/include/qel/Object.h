#pragma once

#include <qel/RefCounted.h>

namespace qel {

/// Base of everything that is made on the heap and handed out as a pointer.
class QEL_API Object : public RefCounted
{
public:
    /// Deletes this object, whatever its reference count, and swallows every exception of its destructor.
    void destroy();
    /// The same for an object that may be null, for which it does nothing.
    static void destroy(Object* object);

    ~Object() noexcept(false) override;

protected:
    Object();
    Object(Object const& other);
    Object& operator=(Object const& other);
};

} // namespace qel
