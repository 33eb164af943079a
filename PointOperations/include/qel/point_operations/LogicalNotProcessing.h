#pragma once

#include <qel/Algorithm.h>

namespace qel::point_operations {

/// Complements all bits of each voxel: out(x) = ~in(x).
///
/// `input`: any of the eight integer voxel types, any five sizes. `output`: takes sizes, spacing, origin, voxel type
/// and interpretation of `input`; may be `input` itself. The complement is that of the whole type, whatever the
/// interpretation; see InvertImage for the complement of a binary image.
///
/// Throws RuleException, before any voxel changes, when an image is missing or `input` is not of an integer type.
class QEL_API LogicalNotProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(LogicalNotProcessing)

public:
    Property<ImageModel const*> input;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
