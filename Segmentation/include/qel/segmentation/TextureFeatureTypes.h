#pragma once

#include <qel/Export.h>

class EnumInfo;

namespace qel::segmentation {

/// Measures of the texture in a window around a voxel.
///
/// The `COOC_` measures are taken from a matrix of how often two grey levels stand one step apart, one matrix for each
/// direction of a step. Each has four forms, one behind the other: one value for each direction, and over the
/// directions the mean, the standard deviation and the range. The `HISTO_` measures are taken from the histogram of the
/// window.
///
/// Reference: R. M. Haralick, K. Shanmugam, I. Dinstein, "Textural features for image classification", IEEE Trans. SMC
/// 3(6):610-621, 1973.
enum QEL_API TextureFeatureTypes : int
{
    COOC_AngularSecondMoment = 0, ///< sum of squared probabilities: large where few pairs of levels make up the window
    COOC_FirstMeasure = COOC_AngularSecondMoment,
    COOC_AngularSecondMomentMean,
    COOC_AngularSecondMomentStddev,
    COOC_AngularSecondMomentRange,
    COOC_Contrast, ///< mean squared difference of the levels of a pair
    COOC_ContrastMean,
    COOC_ContrastStddev,
    COOC_ContrastRange,
    COOC_Correlation, ///< how far one level of a pair follows from the other one, linearly; 0 in a window of one level
    COOC_CorrelationMean,
    COOC_CorrelationStddev,
    COOC_CorrelationRange,
    COOC_SumOfSquares, ///< variance of the levels
    COOC_SumOfSquaresMean,
    COOC_SumOfSquaresStddev,
    COOC_SumOfSquaresRange,
    COOC_InverseDifferenceMoment, ///< large where the levels of pairs are alike
    COOC_InverseDifferenceMomentMean,
    COOC_InverseDifferenceMomentStddev,
    COOC_InverseDifferenceMomentRange,
    COOC_SumAverage, ///< mean sum of the bins of a pair, times the squared bin size, and twice the minimum
    COOC_SumAverageMean,
    COOC_SumAverageStddev,
    COOC_SumAverageRange,
    COOC_SumVariance, ///< variance of that sum
    COOC_SumVarianceMean,
    COOC_SumVarianceStddev,
    COOC_SumVarianceRange,
    COOC_SumEntropy, ///< entropy of that sum
    COOC_SumEntropyMean,
    COOC_SumEntropyStddev,
    COOC_SumEntropyRange,
    COOC_Entropy, ///< entropy of pairs of levels
    COOC_EntropyMean,
    COOC_EntropyStddev,
    COOC_EntropyRange,
    COOC_DifferenceVariance, ///< variance of the difference of the levels of a pair
    COOC_DifferenceVarianceMean,
    COOC_DifferenceVarianceStddev,
    COOC_DifferenceVarianceRange,
    COOC_DifferenceEntropy, ///< entropy of that difference
    COOC_DifferenceEntropyMean,
    COOC_DifferenceEntropyStddev,
    COOC_DifferenceEntropyRange,
    COOC_InformationMeasuresCorrelation1, ///< the first measure of correlation by information
    COOC_InformationMeasuresCorrelation1Mean,
    COOC_InformationMeasuresCorrelation1Stddev,
    COOC_InformationMeasuresCorrelation1Range,
    COOC_InformationMeasuresCorrelation2, ///< the second one
    COOC_InformationMeasuresCorrelation2Mean,
    COOC_InformationMeasuresCorrelation2Stddev,
    COOC_InformationMeasuresCorrelation2Range,
    COOC_LastMeasure = COOC_InformationMeasuresCorrelation2Range,
    HISTO_Mean, ///< mean of the levels
    HISTO_FirstMeasure = HISTO_Mean,
    HISTO_Stddev,     ///< their standard deviation
    HISTO_Variance,   ///< their variance
    HISTO_Skewness,   ///< their skewness
    HISTO_Kurtosis,   ///< their excess kurtosis
    HISTO_Peak,       ///< the most frequent level
    HISTO_Quantile10, ///< the level below which a tenth of the window lies
    HISTO_Quantile25,
    HISTO_Quantile50,
    HISTO_Quantile75,
    HISTO_Quantile90,
    HISTO_QuantileR1, ///< quantiles at ratios of the caller
    HISTO_QuantileR2,
    HISTO_QuantileR3,
    HISTO_QuantileR4,
    HISTO_QuantileR5,
    HISTO_QuantileR6,
    HISTO_LastMeasure = HISTO_QuantileR6
};

/// Describes TextureFeatureTypes.
QEL_API EnumInfo& textureFeatureTypesInfo();

} // namespace qel::segmentation
