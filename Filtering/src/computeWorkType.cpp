#include "Filtering/private/computeWorkType.h"

#include <limits>

namespace qel::filtering::smoothing::details {

VoxelTypes computeWorkType(VoxelTypes input, unsigned long area)
{
    switch (input) {
    case QEL_UINT8:
        return area < 257 ? QEL_UINT16 : area <= 8388608 ? QEL_INT32 : QEL_FLOAT32;
    case QEL_UINT16:
        return area <= 32768 ? QEL_INT32 : QEL_FLOAT32;
    case QEL_INT8:
        return area < 257 ? QEL_INT16 : area <= 16777216 ? QEL_INT32 : QEL_FLOAT32;
    case QEL_INT16:
        return area <= 65536 ? QEL_INT32 : QEL_FLOAT32;
    case QEL_FLOAT64:
        return QEL_FLOAT64;
    default:
        return QEL_FLOAT32;
    }
}

unsigned long productOf(unsigned long first, unsigned long second)
{
    unsigned long product = 0;
    return __builtin_mul_overflow(first, second, &product) ? std::numeric_limits<unsigned long>::max() : product;
}

} // namespace qel::filtering::smoothing::details
