#pragma once

#include <qel/Algorithm.h>

namespace qel::point_operations {

/// Keeps the voxels under a mask: out(x) = in(x) where mask(x) is not 0, and 0 elsewhere.
///
/// `input`: any of the ten real voxel types, any sizes with one spectral series. `inputBinary`: the mask, of a signed
/// or unsigned 8- or 16-bit type and any interpretation, with the columns, rows and plans of `input` and one spectral
/// series; a time series that it lacks counts as 0. `output`: takes sizes, spacing, origin and voxel type of `input`;
/// may be `input` or the mask itself.
///
/// Throws RuleException, before any voxel changes, when an image is missing, or the mask has another type or size;
/// UnexpectedError when `input` has a second spectral series, for which there is no mask.
class QEL_API MaskImageProcessing : public BaseAlgorithm
{
    QEL_ALGORITHM(MaskImageProcessing)

public:
    Property<ImageModel const*> input;
    Property<ImageModel const*> inputBinary;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
