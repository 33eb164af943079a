#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "Segmentation/private/ThresholdScalarGeneric.h"

#include <qel/segmentation/Threshold.h>

namespace qel::segmentation {

namespace {

struct ThresholdDispatcher
{
    /// 0 and 1 survive every cast: rows of bytes serve all four output types.
    template <class T> static void run(Threshold* threshold)
    {
        runPointwise<T, unsigned char>(*threshold, threshold->input, threshold->output,
                                       ThresholdScalarGeneric<T>(threshold->lowLevel, threshold->highLevel));
    }
};

class ScalarThresholdRunner : public ScalarRunner<Threshold>
{
    void runOn(Threshold& threshold) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, ThresholdDispatcher, Threshold*>()(
            threshold.input.get()->getVoxelType(), &threshold);
    }
};

} // namespace

QEL_REGISTER_RUNNER(Threshold, ScalarThresholdRunner)

} // namespace qel::segmentation
