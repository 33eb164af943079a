#include <qel/AlgoPrecisionType.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::algoPrecisionTypeInfo()
{
    static EnumInfo info("AlgoPrecisionType", "QEL_ALGO_FAST = 0, QEL_ALGO_PRECISE");
    return info;
}

} // namespace qel
