#pragma once

#include <qel/Algorithm.h>

namespace qel::segmentation {

/// Gives every group of foreground voxels that touch each other, also by a corner, a number of its own: 1, 2, 3 and so
/// on, and 0 to the background. A voxel is foreground when it differs from zero; a NaN is foreground.
///
/// Planes are labelled one by one: nothing connects two plans or two points in time, and each plane starts at 1 again.
///
/// `input`: any of the ten real voxel types, with one spectral series. `output`: of any integer type, which it keeps;
/// takes sizes, spacing and origin of `input`, and may be `input` itself.
///
/// *What may stay apart.* Two voxels that share a number always touch through voxels of that number, but the reverse
/// holds only nearly: labels that turn out to be equal while the rows are scanned are linked over a single level, and a
/// link to be followed further may be overwritten. So a few groups of very winding shape get two or more numbers. In
/// noise of 100 x 100 voxels, half of them foreground, about one picture in ten has such a group; among smooth objects
/// there is hardly any. Where each group must be whole whatever its shape, check the numbers of touching voxels.
///
/// *What the numbers depend on.* A plane is cut into stripes of rows, as many as the machine has logical processors or
/// some more, and is numbered stripe by stripe. So one machine gives the same numbers in every run, on any number of
/// threads; a machine with another number of processors may number the groups in another order, and may keep others
/// apart.
///
/// *How many.* Numbers wrap around in the voxel type of `output`, within a stripe and in the whole: 255 groups fit into
/// QEL_UINT8, and beyond that groups share numbers, or have 0. Nothing tells; QEL_UINT32 is wide enough for any plane.
///
/// A cancelled run leaves planes that are done, planes that are untouched, and at most a few in between.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size.
class QEL_API Labeling : public BaseAlgorithm
{
    QEL_ALGORITHM(Labeling)

public:
    Property<ImageModel const*> input;
    Property<ImageModel*> output;
};

} // namespace qel::segmentation
