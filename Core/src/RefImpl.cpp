#include <qel/Ref.h>

#include "Core/private/Throw.h"

namespace qel {

RefImpl::RefImpl()
    : m_object(nullptr)
{}

RefImpl::RefImpl(Object* object)
    : RefImpl()
{
    assign(object);
}

RefImpl::RefImpl(RefImpl const& other)
    : RefImpl()
{
    assign(other.m_object);
}

RefImpl::~RefImpl() { assign(nullptr); }

RefImpl& RefImpl::operator=(RefImpl const& other)
{
    assign(other.m_object);
    return *this;
}

void RefImpl::assign(Object* object)
{
    // The new object first: it may be the old one, or live only through it.
    if (object)
        object->ref();
    Object* const old = m_object;
    m_object = object;
    if (old && old->unref() == 0)
        old->destroy();
}

Object* RefImpl::getObject() const { return m_object; }

void RefImpl::nullDereferenceError() { QEL_THROW(RuntimeError, "Illegal attempt to dereference a pointer."); }

} // namespace qel
