#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/point_operations/ArithmeticOperatorType.h>

namespace qel::point_operations {

/// Combines two images by arithmetic: out(x) = in1(x) op in2(x).
///
/// `input1`, `input2`: any of the ten real voxel types, each its own, of the same five sizes. `arithmeticOperator` (an
/// ArithmeticOperatorType, default ARITHMETIC_ADD). `output`: takes sizes, spacing and origin of `input1`, and the
/// voxel type that the operator gives for the two types: adding two QEL_UINT8 images gives QEL_INT16, multiplying them
/// gives QEL_UINT16. It may be one of the inputs where that one has this type already.
///
/// Voxels are cast to the type of `output` first, and all arithmetic is done in it. Nothing saturates: integers wrap,
/// and the smallest integer divided by -1 is itself. Integer quotients are cut towards 0. A quotient by 0 is 0, of
/// integers and reals alike. Where a minimum or maximum meets a NaN, the voxel of `input1` stays.
///
/// Throws RuleException, before any voxel changes, when an image is missing, the sizes differ, or `output` is an input
/// that would have to change its type; InvalidCall when the operator is none of the six.
class QEL_API ArithmeticImageProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(ArithmeticImageProcessing)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input1;
    Property<ImageModel const*> input2;
    PropertyEnumeration arithmeticOperator;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
