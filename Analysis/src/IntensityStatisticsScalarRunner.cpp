#include "Analysis/private/IntensityStatisticsScalarGeneric.h"
#include "Analysis/private/measure.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Core/private/storeResult.h"

#include <qel/analysis/IntensityStatistics.h>

namespace qel::analysis {

namespace {

struct IntensityStatisticsScalarDispatcher
{
    template <class T> static void run(IntensityStatistics* statistics)
    {
        IntensityStatisticsScalarGeneric<T> body;
        measure<T, SimdVec::arch_scalar_tag>(*statistics, statistics->input, access::FixedBorderCondition<T>::New(T(0)),
                                             body);
        storeExtrema(*statistics, body);
        storeResult(statistics->outputMean, Scalar(body.mean));
        storeResult(statistics->outputSumOfIntensityValues, Scalar(body.sum));
        storeResult(statistics->outputSumOfSquaredIntensityValues, Scalar(body.sumOfSquares));
        storeResult(statistics->outputStandardDeviation, Scalar(body.standardDeviation));
    }
};

class ScalarIntensityStatisticsRunner : public ScalarRunner<IntensityStatistics>
{
    void runOn(IntensityStatistics& statistics) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, IntensityStatisticsScalarDispatcher, IntensityStatistics*>()(
            statistics.input.get()->getVoxelType(), &statistics);
    }
};

} // namespace

QEL_REGISTER_RUNNER(IntensityStatistics, ScalarIntensityStatisticsRunner)

} // namespace qel::analysis
