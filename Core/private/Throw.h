#pragma once

#include <qel/Exception.h>

#include "Core/private/ClassicText.h"

namespace qel::throwing {

/// The first level of an exception. `file` is a path from the project's root; its ending goes.
Exception::exceptionInfo firstLevel(String const& message, char const* file, unsigned long line);

} // namespace qel::throwing

/// Throws an exception of type `Type` whose message is composed in a text stream:
/// `QEL_THROW(BadIndex, "Value " << value << " is wrong.");`
#define QEL_THROW(Type, ...)                                                                                           \
    do {                                                                                                               \
        ::qel::ClassicStream qelMessage;                                                                               \
        qelMessage << __VA_ARGS__;                                                                                     \
        throw Type(::qel::throwing::firstLevel(qelMessage.text(), __FILE__, __LINE__));                                \
    } while (false)
