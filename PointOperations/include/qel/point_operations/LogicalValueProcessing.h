#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/point_operations/BinaryLogicalOperatorType.h>

namespace qel::point_operations {

/// Combines an image with a value bit by bit: out(x) = in(x) op value.
///
/// `input`: any of the eight integer voxel types, any five sizes. `inputValue` (default 0): its low bits count, as many
/// as a voxel has. `logicalOperator` (a BinaryLogicalOperatorType, default LOGICAL_AND): LOGICAL_SUB clears the bits of
/// the value. `output`: takes sizes, spacing, origin, voxel type and interpretation of `input`; may be `input` itself.
///
/// A complement is that of all bits of the type, whatever the interpretation. See InvertImage for the complement of a
/// binary image.
///
/// Throws RuleException, before any voxel changes, when an image is missing, `input` is not of an integer type, or the
/// operator is none of the seven.
class QEL_API LogicalValueProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(LogicalValueProcessing)

public:
    Property<ImageModel const*> input;
    Property<long> inputValue;
    PropertyEnumeration logicalOperator;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
