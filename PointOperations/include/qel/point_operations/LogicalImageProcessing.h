#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/point_operations/BinaryLogicalOperatorType.h>

namespace qel::point_operations {

/// Combines two images bit by bit: out(x) = in1(x) op in2(x).
///
/// `input1`, `input2`: of one of the eight integer voxel types, the same for both, and of the same five sizes.
/// `logicalOperator` (a BinaryLogicalOperatorType, default LOGICAL_AND): LOGICAL_SUB keeps the bits of `input1` that
/// `input2` has not. `output`: takes sizes, spacing, origin, voxel type and interpretation of `input1`; may be one of
/// the inputs.
///
/// A complement is that of all bits of the type, whatever the interpretation: LOGICAL_NAND of 1 and 1 in a binary image
/// of QEL_UINT8 is 254. See InvertImage for the complement of a binary image.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size, or the operator
/// is none of the seven.
class QEL_API LogicalImageProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(LogicalImageProcessing)

public:
    Property<ImageModel const*> input1;
    Property<ImageModel const*> input2;
    PropertyEnumeration logicalOperator;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
