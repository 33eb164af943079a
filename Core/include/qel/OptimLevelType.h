#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// The instruction sets for which an algorithm may have a runner, the least capable first.
enum OptimLevelType : int
{
    SCALAR = 0,
    VEC_SSE,
    VEC_AVX,
    GPU
};

namespace helper {

/// Describes OptimLevelType.
QEL_API EnumInfo& optimLevelTypeInfo();

} // namespace helper
} // namespace qel
