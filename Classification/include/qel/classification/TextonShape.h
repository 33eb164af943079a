#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel::classification {

/// Which steps between two voxels make up the directions of co-occurrence measures.
enum TextonShape : int
{
    CUBE = 0, ///< to the corners and the middles of the sides of a square or cube
    SPHERE,   ///< to all voxels at one distance
    BALL      ///< to all voxels up to that distance
};

/// Describes TextonShape.
QEL_API EnumInfo& textonShapeInfo();

} // namespace qel::classification
