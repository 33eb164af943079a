#include <qel/Neighborhood2DType.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::neighborhood2DTypeInfo()
{
    static EnumInfo info("Neighborhood2DType", "QEL_NEIGHBORHOOD2D_4 = 0, QEL_NEIGHBORHOOD2D_8");
    return info;
}

} // namespace qel
