#pragma once

#include <qel/VoxelTypes.h>

namespace qel {
class BaseAlgorithm;
class ImageModel;
} // namespace qel

namespace qel::morphology {

/// What makes a row of voxels out of the rows around it.
template <class T> class NeighborhoodRule
{
public:
    /// `rows`: the row of the voxels and those beside it, 3 in a plan and 9 in space, in the order of plans and rows;
    /// the middle one is their own. Columns -1 to `count` can be read. Called from many threads.
    virtual void apply(T const* const* rows, T* out, long count) const = 0;

protected:
    ~NeighborhoodRule() = default;
};

/// Sets each voxel of the output by the rule, in plans or in space. The images may be of any type and may be one: bits
/// of voxels that `T` cannot hold are lost. Throws InvalidCall for an unknown BinaryBorderConditionTypes.
template <class T>
void runNeighborhoodRule(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output, bool isPlanar,
                         int borderCondition, NeighborhoodRule<T> const& rule);

/// Whether objects go on beyond the image. Throws InvalidCall for an unknown BinaryBorderConditionTypes.
bool continuesObjects(int borderCondition);

/// Calls `run(T())` with the unsigned type that is as wide as a binary image's voxels; does nothing for other types.
template <class Run> void visitWidthOf(VoxelTypes type, Run const& run)
{
    switch (type) {
    case QEL_UINT8:
    case QEL_INT8:
        return run(static_cast<unsigned char>(0));
    case QEL_UINT16:
    case QEL_INT16:
        return run(static_cast<unsigned short>(0));
    default:
        return;
    }
}

} // namespace qel::morphology
