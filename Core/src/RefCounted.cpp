#include <qel/RefCounted.h>

#include <atomic>

namespace qel {

class RefCountedPrivate
{
public:
    std::atomic<unsigned int> count{0};
};

RefCounted::RefCounted()
    : m_private(new RefCountedPrivate)
{}

RefCounted::RefCounted(RefCounted const&)
    : RefCounted()
{}

RefCounted& RefCounted::operator=(RefCounted const&) { return *this; }

RefCounted::~RefCounted() noexcept(false) { delete m_private; }

unsigned int RefCounted::ref() const { return ++m_private->count; }

unsigned int RefCounted::unref() const { return --m_private->count; }

unsigned int RefCounted::getReference() const { return m_private->count; }

} // namespace qel
