#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/morphology/ReconstructionType.h>

namespace qel::morphology {

/// Reconstructs a grey image from a marker: by dilation, the marker grows, step by step over neighbours, as far as
/// `input` lets it; by erosion, it shrinks down to `input`.
///
/// `input`, `marker`: images of any of the ten real voxel types, which may differ, with one spectral series and the
/// same five sizes; `input` is cast to the type of `marker`. A marker beyond `input` is brought back to it first.
/// `reconstructionType` (a ReconstructionType, default QEL_DILATION). `neighborhood3D` (a Neighborhood3DType, default
/// QEL_NEIGHBORHOOD3D_26). `output`: takes sizes, calibration, voxel type and interpretation of `marker`; it may be
/// either image where the type allows. Time series are reconstructed each by itself. For a dilation, voxels beyond the
/// image are 0, also where values are negative.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size, an enumeration
/// has an unknown value, or `output` would have to change the type of `input`.
///
/// Reference: L. Vincent, "Morphological grayscale reconstruction in image analysis: applications and efficient
/// algorithms", IEEE Transactions on Image Processing 2:176-201, 1993.
class QEL_API GrayScaleReconstruction3D : public BaseAlgorithm
{
    QEL_ALGORITHM(GrayScaleReconstruction3D)

public:
    Property<ImageModel const*> input;
    Property<ImageModel const*> marker;
    PropertyEnumeration reconstructionType;
    PropertyEnumeration neighborhood3D;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
