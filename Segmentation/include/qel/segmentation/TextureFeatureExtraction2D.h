#pragma once

#include <qel/Algorithm.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>
#include <qel/segmentation/TextureFeatureGroup.h>

namespace qel::segmentation {

/// Measures the texture in a disk around each voxel, plan by plan: one channel of the output for each measure, and for
/// each direction of a measure that is taken in each direction.
///
/// Two families of measures, after Haralick and from a histogram; see TextureFeatureTypes. Measures of co-occurrence
/// look at all pairs of voxels of the disk that are one step apart, in either order, where the step is one of
/// `directionCollection`. P(i, j) is the part of them with grey levels in the bins i and j. Its entropies are those of
/// levels, not of bins: (log b + H) b for a bin size of b.
///
/// `input`: any of the ten real voxel types, any five sizes; outside of the image voxels are those of its mirror image.
/// `radius` r (voxels, default 5, above 0): the disk has the voxels whose squared distance is below r (r + 1).
/// `textureFeaturesGroup`: at least one measure, in the order of the channels; of a measure that stands twice, the
/// first channels are 0.
/// `minGreyLevelCooccurrence`, `maxGreyLevelCooccurrence` (defaults 0 and -1): the range of the bins, beyond which
/// levels count in the first and the last bin; with the minimum above the maximum, that of the image.
/// `binSizeCooccurrence` (default 0): how many levels a bin has; 0 or less is a 20th of the range, rounded up to a
/// whole number, so that an image between 0 and 1 has bins of 1. There are ceil((max - min + 1) / size) bins, 65536 at
/// most. `directionCollection`: steps in voxels (columns, rows), at least one where co-occurrence is measured.
/// `minGreyLevelHistogram`, `maxGreyLevelHistogram`, `binSizeHistogram` (defaults 0, -1 and 0): the same for
/// histograms, where levels beyond the range do not count, and the bin size is a 256th of the range.
/// `userQuantileRatioHistogram` (default six times -1, which gives the centre of the first bin): the ratios of
/// HISTO_QuantileR1 to HISTO_QuantileR6. `output`: of QEL_FLOAT32 or QEL_FLOAT64. It is resized to columns, rows and
/// plans of `input`, one spectral series, and a time series for each channel: that of channel c, of C, for the time
/// series t and the spectral series s, of S, of the input is (t S + s) C + c. It may be `input` itself.
///
/// Throws RuleException when an image is missing or of another type, there is no measure, the radius is 0, there are
/// not six ratios, or the output refuses its size; InvalidCall when a number of the list is no measure, there is no
/// direction or one that leads out of the disk, when the image has one grey level and the bin size of a used family is
/// left open, or when no voxel of a disk is in the range of histograms; MemoryError for bins or a radius that no memory
/// holds.
///
/// Cost: a step along a row takes the pairs that enter and leave, for any number of bins; a measure that is not asked
/// for takes nothing. Results do not depend on the blocks or threads.
///
/// Reference: R. M. Haralick, K. Shanmugam, I. Dinstein, "Textural features for image classification", IEEE Trans. SMC
/// 3(6):610-621, 1973.
class QEL_API TextureFeatureExtraction2D : public BaseAlgorithm
{
    QEL_ALGORITHM(TextureFeatureExtraction2D)

public:
    Property<ImageModel const*> input;
    Property<unsigned int> radius;
    Property<TextureFeatureGroup> textureFeaturesGroup;
    Property<double> minGreyLevelCooccurrence;
    Property<double> maxGreyLevelCooccurrence;
    Property<double> binSizeCooccurrence;
    Property<container::Vector<math::Vector2<int>>> directionCollection;
    Property<double> minGreyLevelHistogram;
    Property<double> maxGreyLevelHistogram;
    Property<double> binSizeHistogram;
    Property<container::Vector<double>> userQuantileRatioHistogram;
    Property<ImageModel*> output;
};

} // namespace qel::segmentation
