#pragma once

namespace qel::linear_filtering {

/// An axis of the offsets of a kernel in space.
enum KernelDirection3D : int
{
    QEL_KERNEL_DIRECTION3D_X = 0, ///< along columns
    QEL_KERNEL_DIRECTION3D_Y,     ///< along rows
    QEL_KERNEL_DIRECTION3D_Z      ///< along plans
};

} // namespace qel::linear_filtering
