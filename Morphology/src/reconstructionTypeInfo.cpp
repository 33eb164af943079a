#include "Morphology/private/reconstructionTypeInfo.h"

#include <qel/EnumInfo.h>

namespace qel::morphology {

EnumInfo& reconstructionTypeInfo()
{
    static EnumInfo info("ReconstructionType", "QEL_DILATION = 0, QEL_EROSION");
    return info;
}

} // namespace qel::morphology
