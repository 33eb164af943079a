#pragma once

#include <qel/VoxelTypes.h>

#include <type_traits>

namespace qel::linear_filtering {

/// Calls `visit(std::type_identity<T>())` for what sums are computed in where they end as voxels of this type: float
/// where it holds them all, and double else.
template <class Visit> void visitTypeOfSums(VoxelTypes result, Visit const& visit)
{
    switch (result) {
    case QEL_UINT8:
    case QEL_UINT16:
    case QEL_INT8:
    case QEL_INT16:
    case QEL_FLOAT32:
        return visit(std::type_identity<float>());
    default:
        return visit(std::type_identity<double>());
    }
}

} // namespace qel::linear_filtering
