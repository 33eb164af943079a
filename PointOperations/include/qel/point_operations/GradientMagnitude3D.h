#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/point_operations/GradientMagnitudeOutputType.h>

namespace qel::point_operations {

/// Merges three components of a gradient into its magnitude: out(x) = sqrt(in1(x)^2 + in2(x)^2 + in3(x)^2).
///
/// `input1`, `input2`, `input3`: of one of the ten real voxel types, the same for all, and of the same five sizes; the
/// derivatives come from elsewhere. `outputMode` (a GradientMagnitudeOutputType, default
/// GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN): GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS gives the largest of the
/// components, without taking absolute values. `output`: takes sizes, spacing, origin and voxel type of `input1`; may
/// be one of the inputs.
///
/// Squares and their sum are those of the voxel type: in an integer type they wrap, so a type should be taken that
/// holds them. Roots are cut towards 0; that of a sum that wrapped to a negative number is cast as a NaN is: 0 in 8 and
/// 16 bits, the smallest value in 32 and 64 bits.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size, or the mode is
/// neither of the two.
class QEL_API GradientMagnitude3D : public BaseAlgorithm
{
    QEL_ALGORITHM(GradientMagnitude3D)

public:
    Property<ImageModel const*> input1;
    Property<ImageModel const*> input2;
    Property<ImageModel const*> input3;
    PropertyEnumeration outputMode;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
