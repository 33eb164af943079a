#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::morphology {

/// Which voxels get a distance: those of the objects, or those of the background.
enum RegionType
{
    INSIDE = 0,
    OUTSIDE = 1
};

/// What lies beyond the image for a distance map: voxels of value 0, or the image's mirror image.
enum BorderCondition
{
    ZERO = 0,
    MIRROR = 1
};

/// Gives each voxel of a region its Euclidean distance to the region's nearest boundary, in the units of the spacings.
///
/// The boundary runs half-way between a voxel of the region and its nearest neighbours outside of it, among 26. These
/// half-way points spread from voxel to voxel over the 26-neighbourhood, in the order of their distance, and each voxel
/// keeps the nearest that reached it. So a distance is never below the true one, and rarely above it: where the nearest
/// point's voxels form no chain up to this one. A region without any boundary keeps 3.4028235e38.
///
/// `input`: a binary image of 8- or 16-bit integers, with one time and one spectral series. `regionType` (a RegionType,
/// default INSIDE). `borderCondition` (a qel::morphology::BorderCondition, default ZERO); with ZERO an image of one
/// plan has boundaries above and below each voxel, so that such an image wants MIRROR. `output`: takes sizes and
/// calibration of `input` and becomes QEL_FLOAT32; 0 outside the region. Plans are half a spacing of rows from their
/// boundaries.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or interpretation, has
/// several series, is both input and output, or an enumeration has an unknown value.
///
/// Reference: P.-E. Danielsson, "Euclidean distance mapping", Computer Graphics and Image Processing 14:227-248, 1980;
/// propagation in the order of distance after I. Ragnemalm, "Neighborhoods for distance transformations using ordered
/// propagation", CVGIP: Image Understanding 56:399-409, 1992.
class QEL_API EuclideanDistanceMap : public BaseAlgorithm
{
    QEL_ALGORITHM(EuclideanDistanceMap)

public:
    Property<ImageModel const*> input;
    PropertyEnumeration regionType;
    PropertyEnumeration borderCondition;
    Property<ImageModel*> output;
};

} // namespace qel::morphology
