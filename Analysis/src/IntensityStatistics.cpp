#include <qel/analysis/IntensityStatistics.h>

#include "Core/private/DefineAlgorithm.h"

namespace qel::analysis {

QEL_DEFINE_ALGORITHM(IntensityStatistics)

void IntensityStatistics::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addOutput(&outputMinimum);
    declare(outputMinimum, "outputMinimum", Scalar());
    addOutput(&outputMaximum);
    declare(outputMaximum, "outputMaximum", Scalar());
    addOutput(&outputMean);
    declare(outputMean, "outputMean", Scalar());
    addOutput(&outputSumOfIntensityValues);
    declare(outputSumOfIntensityValues, "outputSumOfIntensityValues", Scalar());
    addOutput(&outputSumOfSquaredIntensityValues);
    declare(outputSumOfSquaredIntensityValues, "outputSumOfSquaredIntensityValues", Scalar());
    addOutput(&outputStandardDeviation);
    declare(outputStandardDeviation, "outputStandardDeviation", Scalar());
}

AlgoBorderInfluence IntensityStatistics::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::analysis
