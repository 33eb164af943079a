#pragma once

#include <qel/Algorithm.h>

namespace qel::point_operations {

/// Copies an image: out(x) = in(x).
///
/// `input`: any of the ten real voxel types, any five sizes. `output`: takes sizes, spacing, origin, voxel type and
/// interpretation of `input`; must be another image.
///
/// Throws RuleException, before any voxel changes, when an image is missing or both are the same.
class QEL_API CopyImage : public BaseAlgorithm
{
    QEL_ALGORITHM(CopyImage)

public:
    Property<ImageModel const*> input;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
