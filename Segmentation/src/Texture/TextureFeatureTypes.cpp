#include <qel/segmentation/TextureFeatureTypes.h>

#include <qel/EnumInfo.h>

namespace qel::segmentation {

EnumInfo& textureFeatureTypesInfo()
{
    // The comma at its end makes a last label, which is empty and has a value that is no measure.
    static EnumInfo info("TextureFeatureTypes",
                         "COOC_AngularSecondMoment = 0, COOC_FirstMeasure = COOC_AngularSecondMoment, "
                         "COOC_AngularSecondMomentMean, COOC_AngularSecondMomentStddev, COOC_AngularSecondMomentRange, "
                         "COOC_Contrast, COOC_ContrastMean, COOC_ContrastStddev, COOC_ContrastRange, COOC_Correlation, "
                         "COOC_CorrelationMean, COOC_CorrelationStddev, COOC_CorrelationRange, COOC_SumOfSquares, "
                         "COOC_SumOfSquaresMean, COOC_SumOfSquaresStddev, COOC_SumOfSquaresRange, "
                         "COOC_InverseDifferenceMoment, COOC_InverseDifferenceMomentMean, "
                         "COOC_InverseDifferenceMomentStddev, COOC_InverseDifferenceMomentRange, COOC_SumAverage, "
                         "COOC_SumAverageMean, COOC_SumAverageStddev, COOC_SumAverageRange, COOC_SumVariance, "
                         "COOC_SumVarianceMean, COOC_SumVarianceStddev, COOC_SumVarianceRange, COOC_SumEntropy, "
                         "COOC_SumEntropyMean, COOC_SumEntropyStddev, COOC_SumEntropyRange, COOC_Entropy, "
                         "COOC_EntropyMean, COOC_EntropyStddev, COOC_EntropyRange, COOC_DifferenceVariance, "
                         "COOC_DifferenceVarianceMean, COOC_DifferenceVarianceStddev, COOC_DifferenceVarianceRange, "
                         "COOC_DifferenceEntropy, COOC_DifferenceEntropyMean, COOC_DifferenceEntropyStddev, "
                         "COOC_DifferenceEntropyRange, COOC_InformationMeasuresCorrelation1, "
                         "COOC_InformationMeasuresCorrelation1Mean, COOC_InformationMeasuresCorrelation1Stddev, "
                         "COOC_InformationMeasuresCorrelation1Range, COOC_InformationMeasuresCorrelation2, "
                         "COOC_InformationMeasuresCorrelation2Mean, COOC_InformationMeasuresCorrelation2Stddev, "
                         "COOC_InformationMeasuresCorrelation2Range, COOC_LastMeasure = "
                         "COOC_InformationMeasuresCorrelation2Range, HISTO_Mean, HISTO_FirstMeasure = HISTO_Mean, "
                         "HISTO_Stddev, HISTO_Variance, HISTO_Skewness, HISTO_Kurtosis, HISTO_Peak, HISTO_Quantile10, "
                         "HISTO_Quantile25, HISTO_Quantile50, HISTO_Quantile75, HISTO_Quantile90, HISTO_QuantileR1, "
                         "HISTO_QuantileR2, HISTO_QuantileR3, HISTO_QuantileR4, HISTO_QuantileR5, HISTO_QuantileR6, "
                         "HISTO_LastMeasure = HISTO_QuantileR6,");
    return info;
}

} // namespace qel::segmentation
