#pragma once

#include <qel/Export.h>

namespace qel {

class StringPrivate;

/// A character string that can cross the library's border: a handle on characters in heap memory.
///
/// Copying copies the characters. Comparison goes byte by byte, with no regard to encoding or locale.
class QEL_API String
{
public:
    /// An empty string.
    String();
    /// The characters up to the terminator. A null pointer makes an empty string.
    String(char const* text);
    /// `length` characters from `text`, zero bytes among them.
    String(char const* text, unsigned long length);
    String(String const& other);
    ~String();

    String& operator=(String const& other);
    /// Takes the characters up to the terminator, which may lie in this string. A null pointer empties the string.
    String& operator=(char const* text);

    /// The characters with a terminator. Valid until the string changes or ends; never null.
    char const* c_str() const;
    /// How many bytes the string has, without the terminator.
    unsigned long length() const;

    bool operator==(String const& other) const;
    bool operator!=(String const& other) const;

private:
    StringPrivate* m_private;
};

} // namespace qel
