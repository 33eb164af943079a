#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// Whether an algorithm may approximate.
enum AlgoPrecisionType : int
{
    QEL_ALGO_FAST = 0,
    QEL_ALGO_PRECISE
};

namespace helper {

/// Describes AlgoPrecisionType.
QEL_API EnumInfo& algoPrecisionTypeInfo();

} // namespace helper
} // namespace qel
