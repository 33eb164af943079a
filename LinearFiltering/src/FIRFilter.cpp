#include "LinearFiltering/private/FIRFilter.h"

namespace qel::linear_filtering {

EnumInfo& outputModeTypeInfo()
{
    static EnumInfo info("OutputModeType", "QEL_OUTPUT_MODE_AUTO = 0, QEL_OUTPUT_MODE_CUSTOM");
    return info;
}

} // namespace qel::linear_filtering
