#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/nonlinear_filtering/MedianComputationType.h>
#include <qel/nonlinear_filtering/NeighborhoodShape2DType.h>

namespace qel::nonlinear_filtering {

/// Replaces each voxel by the median of a square or a disk around it, plan by plan. It removes specks that are smaller
/// than half the window, and keeps edges.
///
/// `input`: any of the ten real voxel types, any five sizes. `neighborhoodSize` (voxels, default 3): the radius r; a
/// square has a side of 2 r + 1, a disk holds the offsets with x^2 + y^2 <= r^2. `neighborhoodShape` (a
/// NeighborhoodShape2DType, default QEL_SQUARE). `searchMode` (a MedianComputationType, default AUTOMATIC): what it
/// changes is the time and the memory, never the result. `output`: takes sizes, calibration, voxel type and
/// interpretation of `input`; may be `input` itself. Outside of the image, voxels are those of its mirror image.
///
/// Of real numbers, -0 comes before +0, and NaN after all others, whatever its sign; a NaN that is written has none.
///
/// Throws RuleException, before any voxel changes, when an image is missing, the radius is 0, an enumeration has
/// another value, or HISTOGRAM is asked of an image of real numbers; UnexpectedError when the available memory holds
/// neither the window nor, with HISTOGRAM, a counter for each value between the extrema of the image.
///
/// Reference: J. W. Tukey, "Exploratory Data Analysis", Addison-Wesley, 1977; for the running histogram T. S. Huang,
/// G. J. Yang, G. Y. Tang, "A fast two-dimensional median filtering algorithm", IEEE Trans. ASSP 27(1):13-18, 1979.
class QEL_API MedianFilter2D : public BaseAlgorithm
{
    QEL_ALGORITHM(MedianFilter2D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    Property<unsigned int> neighborhoodSize;
    PropertyEnumeration neighborhoodShape;
    PropertyEnumeration searchMode;
    Property<ImageModel*> output;
};

} // namespace qel::nonlinear_filtering
