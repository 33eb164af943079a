#pragma once

namespace qel::linear_filtering {

/// An axis of the offsets of a kernel within a plan.
enum KernelDirection2D : int
{
    QEL_KERNEL_DIRECTION2D_X = 0, ///< along columns
    QEL_KERNEL_DIRECTION2D_Y      ///< along rows
};

} // namespace qel::linear_filtering
