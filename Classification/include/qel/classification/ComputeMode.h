#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel::classification {

/// Whether textures are measured within plans, or in the volume.
enum ComputeMode : int
{
    MODE_2D = 0, ///< in a disk within the plan
    MODE_3D      ///< in a ball
};

/// Describes ComputeMode.
QEL_API EnumInfo& computeModeInfo();

} // namespace qel::classification
