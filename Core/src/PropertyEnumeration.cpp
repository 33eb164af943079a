#include <qel/PropertyEnumeration.h>

#include "Core/private/Throw.h"

#include <qel/EnumInfo.h>
#include <qel/Exception.h>

#include <charconv>
#include <string_view>

namespace qel {

struct PropertyEnumerationPrivate
{
    EnumInfo* info = nullptr;
};

PropertyEnumeration::PropertyEnumeration()
    : m_private(new PropertyEnumerationPrivate)
{}
PropertyEnumeration::~PropertyEnumeration() { delete m_private; }

PropertyEnumeration& PropertyEnumeration::operator=(int value)
{
    set(value);
    return *this;
}

PropertyEnumeration& PropertyEnumeration::operator=(PropertyEnumeration const& other)
{
    set(other.get());
    return *this;
}

EnumInfo* PropertyEnumeration::getEnumInfo() const
{
    if (!m_private->info)
        QEL_THROW(RuntimeError, "no enumeration info associated with the EnumProperty");
    return m_private->info;
}

void PropertyEnumeration::setEnumInfo(EnumInfo* info) { m_private->info = info; }

bool PropertyEnumeration::read(String const& text, String& rest)
{
    rest = text;
    if (!m_private->info)
        return false;
    if (m_private->info->exists(text)) {
        set(m_private->info->getValueFromLabel(text));
        return true;
    }
    std::string_view const digits(text.c_str(), text.length());
    int value = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || !m_private->info->exists(value))
        return false;
    set(value);
    return true;
}

} // namespace qel
