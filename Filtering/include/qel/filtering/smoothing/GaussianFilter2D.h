#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/filtering/smoothing/FilteringType.h>
#include <qel/filtering/smoothing/OutputStrategyType.h>

namespace qel::filtering::smoothing {

/// Smooths an image by the normal distribution, plan by plan, one axis after the other.
///
/// `input`: any of the ten real voxel types. `mode` (a FilteringType, default QEL_FIR): with QEL_IIR `output` is shaped
/// and nothing else is done. `sigmaX`, `sigmaY` (voxels, default 2): the deviation on each axis; at least 0, which
/// weighs by NaN. `kernelSizeFactorX`, `kernelSizeFactorY` (default 3): where the distribution is cut, in deviations;
/// a kernel has ceil(2 sigma factor) points, one more where that is even, and its weights sum up to 1.
/// `outputStrategy` (an OutputStrategyType, default QEL_SAME_AS_INPUT): the voxel type of `output`. `accurate` (default
/// true): between the axes voxels are float32; otherwise they are of the type of `input`, and integers are cut after
/// each axis. `output`: takes sizes, calibration and interpretation of `input`; may be `input` itself where it keeps
/// its type. Integers are cut towards zero. Outside of the image, voxels are those of its mirror image.
///
/// One temporary image is taken in place, where the voxels between the axes are of another type than `output`.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of a complex type, a sigma is below 0, a
/// factor is not above 0, an enumeration has no such value, or `output` is `input` and would have to become another
/// type; and InvalidCall when the memory does not hold a kernel.
class QEL_API GaussianFilter2D : public BaseAlgorithm
{
    QEL_ALGORITHM(GaussianFilter2D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    PropertyEnumeration mode;
    Property<double> sigmaX;
    Property<double> sigmaY;
    Property<double> kernelSizeFactorX;
    Property<double> kernelSizeFactorY;
    PropertyEnumeration outputStrategy;
    Property<bool> accurate;
    Property<ImageModel*> output;
};

} // namespace qel::filtering::smoothing
