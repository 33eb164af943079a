#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/point_operations/ArithmeticOperatorType.h>

namespace qel::point_operations {

/// Combines an image with a value by arithmetic: out(x) = in(x) op value.
///
/// `input`: any of the ten real voxel types, any five sizes. `inputValue` (default 0). `arithmeticOperator` (an
/// ArithmeticOperatorType, default ARITHMETIC_ADD). `output`: takes sizes, spacing and origin of `input`, and the voxel
/// type that the operator gives for the type of `input` and the size of the value: QEL_UINT8 plus 1 gives QEL_INT16,
/// plus 70000 QEL_INT32, plus 0.5 QEL_FLOAT32, plus 0.1 QEL_FLOAT64. It may be `input` where that one has this type
/// already.
///
/// Voxels and value are cast to the type of `output` first, and all arithmetic is done in it. Nothing saturates:
/// integers wrap, and the smallest integer divided by -1 is itself. Integer quotients are cut towards 0. A quotient by
/// 0 is 0, of integers and reals alike. Where a minimum or maximum meets a NaN, the voxel of `input` stays.
///
/// Throws RuleException, before any voxel changes, when an image is missing, or `output` is `input` and would have to
/// change its type; InvalidCall when the operator is none of the six.
class QEL_API ArithmeticValueProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(ArithmeticValueProcessing)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    Property<double> inputValue;
    PropertyEnumeration arithmeticOperator;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
