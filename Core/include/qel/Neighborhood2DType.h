#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// Which voxels of a plan are neighbours.
enum Neighborhood2DType : int
{
    QEL_NEIGHBORHOOD2D_4 = 0, ///< those that share an edge
    QEL_NEIGHBORHOOD2D_8      ///< those that share an edge or a corner
};

namespace helper {

/// Describes Neighborhood2DType.
QEL_API EnumInfo& neighborhood2DTypeInfo();

} // namespace helper
} // namespace qel
