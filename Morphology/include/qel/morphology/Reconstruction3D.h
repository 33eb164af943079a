#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Keeps the connected parts of a binary image that a marker touches: morphological reconstruction of the marker under
/// the image.
///
/// `input`, `marker`: binary images of any integer type with one spectral series and the same five sizes. A marker
/// beside the objects counts for nothing. `neighborhood3D` (a Neighborhood3DType, default QEL_NEIGHBORHOOD3D_26): which
/// voxels touch. `output`: takes sizes and calibration of `input` and becomes a QEL_UINT8 image of interpretation
/// QEL_BINARY; 1 where a part is kept, 0 elsewhere. It may be `input` or `marker` if that one is of type QEL_UINT8.
/// Time series are reconstructed each by itself.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type, interpretation or size,
/// the neighbourhood has an unknown value, or `output` would have to change the type of an input.
///
/// Reference: L. Vincent, "Morphological grayscale reconstruction in image analysis: applications and efficient
/// algorithms", IEEE Transactions on Image Processing 2:176-201, 1993.
class QEL_API Reconstruction3D : public BaseAlgorithm
{
    QEL_ALGORITHM(Reconstruction3D)

public:
    Property<ImageModel const*> input;
    Property<ImageModel const*> marker;
    PropertyEnumeration neighborhood3D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
