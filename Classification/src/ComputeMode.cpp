#include <qel/classification/ComputeMode.h>

#include <qel/EnumInfo.h>

namespace qel::classification {

EnumInfo& computeModeInfo()
{
    static EnumInfo info("ComputeMode", "MODE_2D = 0, MODE_3D");
    return info;
}

} // namespace qel::classification
