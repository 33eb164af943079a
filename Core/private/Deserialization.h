#pragma once

#include <qel/String.h>

namespace qel {

/// Reads a value from its text form.
///
/// `doIt` copies the text to `rest`, and answers whether the text was read and `value` stored; otherwise `value` stays
/// as it was. This general form reads nothing: pointers, images, arrays of scalars and matrices have no text form. The
/// forms that exist are specialisations; those of Core stand at the end of this header.
template <class T> struct Deserialization
{
    static bool doIt(String const& text, T& value, String& rest)
    {
        static_cast<void>(value);
        rest = text;
        return false;
    }
};

} // namespace qel
