#include "Core/private/Rules/TypePromotion.h"

#include <cfloat>
#include <cmath>
#include <cstdint>

namespace qel::rules {

namespace {

constexpr int numOfTypes = 10;

// Row: type of the first image. Column: type of the second. These are the types that the operations promise, also where
// a wider one would hold more of the results.
// clang-format off
constexpr unsigned char imageTable[4][numOfTypes][numOfTypes] = {
    // add, subtract, divide
    {{5, 6, 7, 7, 5, 5, 6, 7, 8, 9},
     {6, 6, 7, 7, 6, 6, 6, 7, 8, 9},
     {7, 7, 7, 7, 7, 7, 7, 7, 8, 9},
     {7, 7, 7, 7, 7, 7, 7, 7, 8, 9},
     {5, 6, 7, 7, 5, 5, 6, 7, 8, 9},
     {5, 6, 7, 7, 5, 5, 6, 7, 8, 9},
     {6, 6, 7, 7, 6, 6, 6, 7, 8, 9},
     {7, 7, 7, 7, 7, 7, 7, 7, 8, 9},
     {8, 8, 8, 8, 8, 8, 8, 8, 8, 9},
     {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}},
    // multiply
    {{1, 6, 3, 3, 5, 5, 6, 7, 8, 9},
     {6, 6, 3, 3, 6, 6, 6, 7, 8, 9},
     {3, 3, 3, 3, 7, 7, 7, 7, 8, 9},
     {3, 3, 3, 3, 7, 7, 7, 7, 8, 9},
     {5, 6, 7, 7, 5, 5, 6, 7, 8, 9},
     {5, 6, 7, 7, 5, 5, 6, 7, 8, 9},
     {6, 6, 7, 7, 6, 6, 6, 7, 8, 9},
     {7, 7, 7, 7, 7, 7, 7, 7, 8, 9},
     {8, 8, 8, 8, 8, 8, 8, 8, 8, 9},
     {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}},
    // minimum
    {{0, 0, 0, 0, 4, 5, 6, 7, 8, 9},
     {0, 1, 1, 1, 4, 5, 6, 7, 8, 9},
     {0, 1, 2, 2, 4, 5, 6, 7, 8, 9},
     {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
     {4, 4, 4, 4, 4, 5, 6, 7, 8, 9},
     {5, 5, 5, 5, 5, 5, 6, 7, 8, 9},
     {6, 6, 6, 6, 6, 6, 6, 7, 8, 9},
     {7, 7, 7, 7, 7, 7, 7, 7, 8, 9},
     {8, 8, 8, 8, 8, 8, 8, 8, 8, 9},
     {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}},
    // maximum
    {{0, 1, 2, 3, 0, 0, 6, 7, 8, 9},
     {1, 1, 2, 3, 1, 1, 1, 7, 8, 9},
     {2, 2, 2, 3, 2, 2, 2, 2, 8, 9},
     {3, 3, 3, 3, 3, 3, 3, 3, 8, 9},
     {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
     {0, 1, 2, 3, 5, 5, 6, 7, 8, 9},
     {6, 1, 2, 3, 6, 6, 6, 7, 8, 9},
     {7, 7, 2, 3, 7, 7, 7, 7, 8, 9},
     {8, 8, 8, 8, 8, 8, 8, 8, 8, 9},
     {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}},
};
// clang-format on

bool isScalar(VoxelTypes type) { return type >= QEL_UINT8 && type <= QEL_FLOAT64; }

template <class T> bool survives(double value) { return static_cast<double>(static_cast<T>(value)) == value; }

VoxelTypes wider(VoxelTypes type, VoxelTypes least) { return type < least ? least : type; }

} // namespace

bool isPromotionMode(unsigned int mode) { return mode <= PROMOTION_MAXIMUM; }

VoxelTypes promoted(unsigned int mode, VoxelTypes first, VoxelTypes second)
{
    if (!isScalar(first))
        return first;
    if (!isScalar(second))
        return second;
    return static_cast<VoxelTypes>(imageTable[mode][first][second]);
}

VoxelTypes classOf(double value)
{
    // Beyond 64 bits no conversion is defined, and no truncation equals the value.
    constexpr double limit64 = 9223372036854775808.0;
    if (!(value >= -limit64 && value < limit64) || !survives<std::int64_t>(value)) {
        if (std::isinf(value) || (std::fabs(value) <= static_cast<double>(FLT_MAX) && survives<float>(value)))
            return QEL_FLOAT32;
        return QEL_FLOAT64;
    }
    auto const whole = static_cast<std::int64_t>(value);
    if (whole != static_cast<std::int32_t>(whole))
        return QEL_INT64;
    return whole == static_cast<std::int16_t>(whole) ? QEL_INT16 : QEL_INT32;
}

VoxelTypes promotedWithValue(unsigned int mode, VoxelTypes image, double value)
{
    VoxelTypes const valueClass = classOf(value);
    switch (image) {
    case QEL_UINT8:
        return mode == PROMOTION_MAXIMUM && valueClass == QEL_INT16 ? image : valueClass;
    case QEL_UINT16:
        if (mode == PROMOTION_MAXIMUM && valueClass <= QEL_INT32)
            return image;
        return mode == PROMOTION_ADD || mode == PROMOTION_MULTIPLY ? wider(valueClass, QEL_INT32) : valueClass;
    case QEL_UINT32:
    case QEL_UINT64:
        if (mode == PROMOTION_MAXIMUM && valueClass <= QEL_INT64)
            return image;
        return mode == PROMOTION_ADD || mode == PROMOTION_MULTIPLY ? wider(valueClass, QEL_INT64) : valueClass;
    case QEL_INT8:
    case QEL_INT16:
        return valueClass;
    case QEL_INT32:
    case QEL_INT64:
    case QEL_FLOAT32:
    case QEL_FLOAT64:
        return wider(valueClass, image);
    default:
        return image;
    }
}

} // namespace qel::rules
