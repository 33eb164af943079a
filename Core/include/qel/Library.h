#pragma once

#include <qel/Export.h>

extern "C" {

/// For hosts that load the library explicitly: readies it, and gives true. Loading does the same by itself.
/// The argument is kept for hosts that pass a handle, and is not looked at.
QEL_API bool QuelideLoadLibrary(void* handle);

/// Lets go of what loading took. Unloading does the same by itself.
QEL_API void QuelideUnloadLibrary();
}
