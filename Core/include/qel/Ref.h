#pragma once

#include <qel/Object.h>

namespace qel {

/// The untyped handle: keeps one object alive through its reference count.
class QEL_API RefImpl
{
public:
    /// A null handle.
    RefImpl();
    explicit RefImpl(Object* object);
    RefImpl(RefImpl const& other);
    /// Releases the object.
    ~RefImpl();

    RefImpl& operator=(RefImpl const& other);

    /// Takes a reference on `object` (may be null, or the one already held), then releases the object held before, and
    /// destroys that one when its count reached 0.
    void assign(Object* object);
    /// The object held, or null.
    Object* getObject() const;

    /// Throws RuntimeError "Illegal attempt to dereference a pointer."
    [[noreturn]] static void nullDereferenceError();

private:
    Object* m_object;
};

/// The typed handle over RefImpl. `T` derives from Object.
///
/// Two threads may hold handles on one object; one handle is not for two threads at a time.
template <class T> class Ref
{
    static T* asTarget(T* object) { return object; }

public:
    /// A null handle.
    Ref() = default;
    /// Takes a reference on `object`, which may be null.
    Ref(T* object)
        : m_impl(object)
    {}
    /// Shares the object of a handle on a class that derives from `T`.
    template <class U, class = decltype(asTarget(static_cast<U*>(nullptr)))>
    Ref(Ref<U> const& other)
        : m_impl(asTarget(other.get()))
    {}

    Ref& operator=(T* object)
    {
        m_impl.assign(object);
        return *this;
    }

    /// Lets `object` (may be null) take the place of the one held.
    void assign(T* object) { m_impl.assign(object); }

    /// The object held, or null.
    T* get() const { return static_cast<T*>(m_impl.getObject()); }

    /// Throws RuntimeError "Illegal attempt to dereference a pointer." on a null handle.
    T* operator->() const
    {
        if (!m_impl.getObject())
            RefImpl::nullDereferenceError();
        return get();
    }
    /// Throws as `operator->` does.
    T& operator*() const { return *operator->(); }

    explicit operator bool() const { return m_impl.getObject() != nullptr; }

    bool operator==(Ref const& other) const { return m_impl.getObject() == other.m_impl.getObject(); }
    bool operator!=(Ref const& other) const { return !(*this == other); }

private:
    RefImpl m_impl;
};

} // namespace qel
