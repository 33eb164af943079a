#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// What a Scalar or a ScalarArray holds: signed 64-bit integers, unsigned 64-bit integers or 64-bit floats.
enum ScalarType : int
{
    INTEGER = 0,
    UNSIGNED_INTEGER,
    REAL
};

namespace helper {

/// Describes ScalarType.
QEL_API EnumInfo& scalarTypeInfo();

} // namespace helper
} // namespace qel
