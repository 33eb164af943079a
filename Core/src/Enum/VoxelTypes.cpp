#include <qel/VoxelTypes.h>

#include <initializer_list>

#include <qel/EnumInfo.h>

namespace qel {

EnumInfo& helper::voxelTypesInfo()
{
    static EnumInfo info("VoxelTypes", "QEL_UINT8 = 0, QEL_UINT16, QEL_UINT32, QEL_UINT64, QEL_INT8, QEL_INT16, "
                                       "QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64, QEL_COMPLEX_FLOAT32, "
                                       "QEL_COMPLEX_FLOAT64");
    return info;
}

String helper::VoxelTypesToString(VoxelTypes const& type)
{
    if (!voxelTypesInfo().exists(type))
        return "";
    switch (type) {
    case QEL_UINT8:
        return "uint8";
    case QEL_UINT16:
        return "uint16";
    case QEL_UINT32:
        return "uint32";
    case QEL_UINT64:
        return "uint64";
    case QEL_INT8:
        return "int8";
    case QEL_INT16:
        return "int16";
    case QEL_INT32:
        return "int32";
    case QEL_INT64:
        return "int64";
    case QEL_FLOAT32:
        return "float32";
    case QEL_FLOAT64:
        return "float64";
    case QEL_COMPLEX_FLOAT32:
        return "complex float32";
    case QEL_COMPLEX_FLOAT64:
        return "complex float64";
    }
    return "undefined voxel type string equivalence";
}

unsigned long helper::getSizeOf(VoxelTypes const& type) { return memory::sizeOfVoxelType(type); }

unsigned long memory::sizeOfVoxelType(VoxelTypes type)
{
    switch (type) {
    case QEL_UINT8:
    case QEL_INT8:
        return 1;
    case QEL_UINT16:
    case QEL_INT16:
        return 2;
    case QEL_UINT32:
    case QEL_INT32:
    case QEL_FLOAT32:
        return 4;
    case QEL_UINT64:
    case QEL_INT64:
    case QEL_FLOAT64:
    case QEL_COMPLEX_FLOAT32:
        return 8;
    case QEL_COMPLEX_FLOAT64:
        return 16;
    }
    return 0;
}

VoxelTypes helper::lesserCommonType(VoxelTypes const& a, VoxelTypes const& b)
{
    // clang-format off
    static constexpr unsigned char common[12 * 12] = {
         0,  1,  2,  3,  5,  5,  6,  7,  8,  9, 10, 11,
         1,  1,  2,  3,  6,  6,  6,  7,  8,  9, 10, 11,
         2,  2,  2,  3,  7,  7,  7,  7,  9,  9, 11, 11,
         3,  3,  3,  3,  9,  9,  9,  9,  9,  9, 11, 11,
         5,  6,  7,  9,  4,  5,  6,  7,  8,  9, 10, 11,
         5,  6,  7,  9,  5,  5,  6,  7,  8,  9, 10, 11,
         6,  6,  7,  9,  6,  6,  6,  7,  9,  9, 11, 11,
         7,  7,  7,  9,  7,  7,  7,  7,  9,  9, 11, 11,
         8,  8,  9,  9,  8,  8,  9,  9,  8,  9, 10, 11,
         9,  9,  9,  9,  9,  9,  9,  9,  9,  9, 11, 11,
        10, 10, 11, 11, 10, 10, 11, 11, 10, 11, 10, 11,
        11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11,
    };
    // clang-format on
    for (VoxelTypes const type : {a, b})
        static_cast<void>(voxelTypesInfo().getLabelFromValue(type)); // throws for a value outside the table
    return static_cast<VoxelTypes>(common[a * 12 + b]);
}

} // namespace qel
