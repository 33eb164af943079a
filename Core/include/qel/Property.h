#pragma once

#include <qel/BaseProperty.h>

namespace qel {

template <class T> struct PropertyPrivate;

/// A named value of type `T`, with the rules that a run applies to it.
///
/// Pointer properties (images, models, point lists) own nothing: what they point to belongs to the host and must
/// outlive the run. The library instantiates it for the types that its algorithms use; see the members of each
/// algorithm.
template <class T> class QEL_API Property : public BaseProperty
{
public:
    using ValueType = T;

    Property();
    ~Property() override;

    T get() const;
    operator T() const;

    /// Writes the value; a locked property silently keeps the one it has.
    void set(T value);
    Property& operator=(T value);
    /// Copies the value alone: name, description, rules and lock stay.
    Property& operator=(Property const& other);

    void applyRules() override;
    String getName() const override;
    String getDescription() const override;
    void setDescription(String const& description) override;
    bool read(String const& text, String& rest) override;

    /// Inside of the library.
    PropertyPrivate<T>* getPrivate() const;

private:
    PropertyPrivate<T>* m_private;
};

} // namespace qel
