#pragma once

#include <qel/Export.h>
#include <qel/Neighborhood2DType.h>
#include <qel/Neighborhood3DType.h>
#include <qel/String.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/linear_filtering/KernelDirection2D.h>
#include <qel/linear_filtering/KernelDirection3D.h>

/// The usual kernels. What has no meaning (an unknown direction or neighbourhood, an even size) gives an empty one.
namespace qel::linear_filtering::kernel_factory {

/// Second derivative: 1 on each neighbour, and on the centre minus their number.
QEL_API kernel::Kernel2D createNeighborhoodLaplacian2D(Neighborhood2DType type);
QEL_API kernel::Kernel3D createNeighborhoodLaplacian3D(Neighborhood3DType type);

/// First derivative along an axis: -1 on the side of offset -1, 1 on the side of offset 1.
QEL_API kernel::Kernel2D createPrewitt2D(KernelDirection2D direction);
QEL_API kernel::Kernel3D createPrewitt3D(KernelDirection3D direction);

/// The same with each side weighted by 1, 2, 1 along each other axis.
QEL_API kernel::Kernel2D createSobel2D(KernelDirection2D direction);
QEL_API kernel::Kernel3D createSobel3D(KernelDirection3D direction);

/// Samples of the normal distribution of deviation `sigma` (voxels) at the `size` offsets around the origin of one
/// axis. Their sum is about 1 for a `size` of some `sigma`; `normalize` makes it 1.
QEL_API kernel::Kernel2D createGaussian1D(unsigned long size, double sigma, KernelDirection2D direction);
QEL_API kernel::Kernel3D createGaussian1D(unsigned long size, double sigma, KernelDirection3D direction);

/// The same in a square or a cube of side `size`.
QEL_API kernel::Kernel2D createGaussian2D(unsigned long size, double sigma);
QEL_API kernel::Kernel3D createGaussian3D(unsigned long size, double sigma);

/// A line of `size` points of weight 1 with its middle in the origin. Angles in degrees: `angle` from columns to rows;
/// `phi` from the axis of plans, `theta` the azimuth.
QEL_API kernel::Kernel2D createLinearBoxFilter2D(double angle, unsigned long size);
QEL_API kernel::Kernel3D createLinearBoxFilter3D(double theta, double phi, unsigned long size);

/// The text form from which a property reads the same kernel, every bit of it: "@kernel2D:" or "@kernel3D:" and the
/// points. Weights are as short as they can be, in the classic locale; exponents have no "+", which stands between
/// points. No property reads an empty kernel.
QEL_API String kernel2DToString(kernel::Kernel2D const& kernel);
QEL_API String kernel3DToString(kernel::Kernel3D const& kernel);

} // namespace qel::linear_filtering::kernel_factory
