#include <qel/Neighborhood3DType.h>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::neighborhood3DTypeInfo()
{
    static EnumInfo info("Neighborhood3DType",
                         "QEL_NEIGHBORHOOD3D_6 = 0, QEL_NEIGHBORHOOD3D_18, QEL_NEIGHBORHOOD3D_26");
    return info;
}

} // namespace qel
