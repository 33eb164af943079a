#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/filtering/smoothing/FilteringType.h>
#include <qel/filtering/smoothing/OutputStrategyType.h>

namespace qel::filtering::smoothing {

/// Smooths a volume by the normal distribution: what GaussianFilter2D does within plans, and `sigmaZ` and
/// `kernelSizeFactorZ` along them. One temporary image is taken where the voxels between the axes are of another type
/// than `output`.
class QEL_API GaussianFilter3D : public BaseAlgorithm
{
    QEL_ALGORITHM(GaussianFilter3D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    PropertyEnumeration mode;
    Property<double> sigmaX;
    Property<double> sigmaY;
    Property<double> sigmaZ;
    Property<double> kernelSizeFactorX;
    Property<double> kernelSizeFactorY;
    Property<double> kernelSizeFactorZ;
    PropertyEnumeration outputStrategy;
    Property<bool> accurate;
    Property<ImageModel*> output;
};

} // namespace qel::filtering::smoothing
