#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/Scalar.h>
#include <qel/filtering/smoothing/NeighborhoodShape3DType.h>

namespace qel::filtering::smoothing {

/// Removes noise from a volume by averaging voxels whose surroundings look alike: out(x) is the mean of in(x + o) over
/// the offsets o of a search window, weighted by exp(-d / (similarity^2 * n)), where d is the sum of squared
/// differences between the patches around x and x + o, and n the number of voxels of a patch. The centre weighs 1.
///
/// `input`: an image of values of any of the ten real voxel types. `patchSize` (voxels, default 3) and
/// `searchWindowSize` (voxels, default 6): half-widths; a patch has a side of 2 patchSize + 1. `similarity`
/// (intensities, default 0.6): how far patches may differ and still count; it is not scaled to the voxel type.
/// `searchWindowShape` (a NeighborhoodShape3DType, default QEL_CUBE). `output`: takes sizes, calibration, voxel type
/// and interpretation of `input`; may be `input` itself. All is computed in double; integers are cut towards zero at
/// the end. Outside of the image, voxels are those of its mirror image.
///
/// Each thread needs a few megabytes, whatever the size of `input` (with a window of 6, about fifteen); in place, a
/// copy of the result waits until the end. The time grows with the volume of the window, and not with the patch.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or interpretation, or
/// the shape is none of the two.
///
/// Reference: A. Buades, B. Coll, J.-M. Morel, "A non-local algorithm for image denoising", CVPR 2:60-65, 2005; with
/// the patch distances of J. Darbon et al., "Fast nonlocal filtering applied to electron cryomicroscopy", ISBI, 2008.
class QEL_API NonLocalMeanFilter3D : public BaseAlgorithm
{
    QEL_ALGORITHM(NonLocalMeanFilter3D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> patchSize;
    Property<unsigned int> searchWindowSize;
    Property<Scalar> similarity;
    PropertyEnumeration searchWindowShape;
    Property<ImageModel*> output;
};

} // namespace qel::filtering::smoothing
