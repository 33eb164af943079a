#pragma once

#include <qel/Algorithm.h>

namespace qel::morphology {

/// Gives each voxel of an object the diameter of the largest ball that lies in the object and covers the voxel, in the
/// units of the spacings. The balls are those around each voxel of the object, with its distance to the boundary as
/// radius (EuclideanDistanceMap, with voxels of value 0 beyond the image).
///
/// `input`: a binary image of 8- or 16-bit integers, with one time and one spectral series. `output`: takes sizes and
/// calibration of `input` and becomes QEL_FLOAT32; 0 in the background.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or interpretation, has
/// several series, or is both input and output.
///
/// Reference: T. Hildebrand, P. Ruegsegger, "A new method for the model-independent assessment of thickness in
/// three-dimensional images", Journal of Microscopy 185:67-75, 1997.
class QEL_API LocalThicknessMap : public BaseAlgorithm
{
    QEL_ALGORITHM(LocalThicknessMap)

public:
    Property<ImageModel const*> input;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
