#pragma once

#include <qel/Property.h>

class EnumInfo;

namespace qel {

struct PropertyEnumerationPrivate;

/// A property whose value is the integer of an enumeration that EnumInfo describes.
///
/// Assignment takes any integer; the run refuses one that is no value of the enumeration. `read` takes a label
/// or a number, and only those that the enumeration knows.
class QEL_API PropertyEnumeration : public Property<int>
{
public:
    PropertyEnumeration();
    ~PropertyEnumeration() override;

    PropertyEnumeration& operator=(int value);
    PropertyEnumeration& operator=(PropertyEnumeration const& other);

    /// The description of the enumeration. Throws RuntimeError where none was given.
    EnumInfo* getEnumInfo() const;
    void setEnumInfo(EnumInfo* info);

    bool read(String const& text, String& rest) override;

private:
    PropertyEnumerationPrivate* m_private;
};

} // namespace qel
