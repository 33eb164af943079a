#pragma once

#include <qel/Algorithm.h>
#include <qel/Scalar.h>

namespace qel::analysis {

/// Measures the distribution of the voxels of an image, over all plans and series.
///
/// `input`: any of the ten real voxel types, any five sizes. `outputMinimum`, `outputMaximum`: in the kind of the
/// voxels, an unsigned integer, a signed integer or a real number. `outputMean`, `outputSumOfIntensityValues`,
/// `outputSumOfSquaredIntensityValues`, `outputStandardDeviation`: real numbers.
///
/// The deviation is that of the population, the square root of the mean square less the squared mean: of a constant
/// image of large values it may be a NaN from rounding. Sums beyond 2^53 are rounded. The results have the same bits on
/// every run and for every number of threads. Of an empty image the mean is a NaN. The extrema pass over a NaN, and -0
/// is 0 for them.
///
/// Throws RuleException when the image is missing. Cost: a read of the image, and a few operations a voxel.
class QEL_API IntensityStatistics : public BaseAlgorithm
{
    QEL_ALGORITHM(IntensityStatistics)

public:
    Property<ImageModel const*> input;
    Property<Scalar> outputMinimum;
    Property<Scalar> outputMaximum;
    Property<Scalar> outputMean;
    Property<Scalar> outputSumOfIntensityValues;
    Property<Scalar> outputSumOfSquaredIntensityValues;
    Property<Scalar> outputStandardDeviation;
};

} // namespace qel::analysis
