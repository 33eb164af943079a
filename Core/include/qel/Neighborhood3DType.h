#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel {

/// Which voxels of a volume are neighbours.
enum Neighborhood3DType : int
{
    QEL_NEIGHBORHOOD3D_6 = 0, ///< those that share a face
    QEL_NEIGHBORHOOD3D_18,    ///< those that share a face or an edge
    QEL_NEIGHBORHOOD3D_26     ///< those that share a face, an edge or a corner
};

namespace helper {

/// Describes Neighborhood3DType.
QEL_API EnumInfo& neighborhood3DTypeInfo();

} // namespace helper
} // namespace qel
