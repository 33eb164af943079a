#pragma once

#include <qel/Export.h>

namespace qel {

class RefCountedPrivate;

/// Root of the object tree: an object with a reference count, which starts at 0.
///
/// The count alone is kept here; a handle (`Ref`) acts on it. Copying an object does not copy its count.
class QEL_API RefCounted
{
public:
    /// Adds one to the count and returns the new count.
    unsigned int ref() const;
    /// Takes one from the count and returns the new count. Destroys nothing.
    unsigned int unref() const;
    /// The current count.
    unsigned int getReference() const;

    /// May let exceptions out: `Object::destroy` swallows them.
    virtual ~RefCounted() noexcept(false);

protected:
    RefCounted();
    RefCounted(RefCounted const& other);
    RefCounted& operator=(RefCounted const& other);

private:
    RefCountedPrivate* m_private;
};

} // namespace qel
