#pragma once

#include <qel/Export.h>
#include <qel/String.h>

class EnumInfo;

namespace qel {

/// The type of an image's voxels. Algorithms run on the ten real types; the two complex ones have a size and a name
/// only.
enum VoxelTypes : int
{
    QEL_UINT8 = 0,
    QEL_UINT16,
    QEL_UINT32,
    QEL_UINT64,
    QEL_INT8,
    QEL_INT16,
    QEL_INT32,
    QEL_INT64,
    QEL_FLOAT32,
    QEL_FLOAT64,
    QEL_COMPLEX_FLOAT32,
    QEL_COMPLEX_FLOAT64
};

namespace helper {

/// Describes VoxelTypes.
QEL_API EnumInfo& voxelTypesInfo();

/// "uint8", "float32", "complex float64" and so on; empty for a value that is no voxel type.
QEL_API String VoxelTypesToString(VoxelTypes const& type);

/// Bytes of one voxel; 0 for a value that is no voxel type.
QEL_API unsigned long getSizeOf(VoxelTypes const& type);

/// The smallest type in which the values of `a` and of `b` can be compared. Symmetric. 64-bit unsigned with any signed
/// type, and 32-bit integers with 32-bit floats, go to QEL_FLOAT64. Throws BadIndex for a value that is no voxel type.
QEL_API VoxelTypes lesserCommonType(VoxelTypes const& a, VoxelTypes const& b);

} // namespace helper

namespace memory {

/// Bytes of one voxel; 0 for a value that is no voxel type.
QEL_API unsigned long sizeOfVoxelType(VoxelTypes type);

} // namespace memory
} // namespace qel
