#include <qel/String.h>

#include <string>

namespace qel {

class StringPrivate
{
public:
    std::string text;
};

String::String()
    : m_private(new StringPrivate)
{}

String::String(char const* text)
    : m_private(new StringPrivate{text ? text : ""})
{}

String::String(char const* text, unsigned long length)
    : m_private(new StringPrivate{std::string(text, length)})
{}

String::String(String const& other)
    : m_private(new StringPrivate(*other.m_private))
{}

String::~String() { delete m_private; }

String& String::operator=(String const& other)
{
    m_private->text = other.m_private->text;
    return *this;
}

String& String::operator=(char const* text)
{
    m_private->text = text ? text : "";
    return *this;
}

char const* String::c_str() const { return m_private->text.c_str(); }

unsigned long String::length() const { return m_private->text.length(); }

bool String::operator==(String const& other) const { return m_private->text == other.m_private->text; }

bool String::operator!=(String const& other) const { return !(*this == other); }

} // namespace qel
