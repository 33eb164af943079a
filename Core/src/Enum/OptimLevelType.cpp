#include <qel/OptimLevelType.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::optimLevelTypeInfo()
{
    static EnumInfo info("OptimLevelType", "SCALAR = 0 , VEC_SSE , VEC_AVX , GPU");
    return info;
}

} // namespace qel
