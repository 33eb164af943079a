#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/GaussianFilterScalarPrivate.h"

#include <qel/filtering/smoothing/GaussianFilter2D.h>

namespace qel::filtering::smoothing {

namespace {

class GaussianFilter2DScalarRunner : public ScalarRunner<GaussianFilter2D>
{
    void runOn(GaussianFilter2D& filter) const override
    {
        GaussianFilter2DScalarPrivate(
            filter, {filter.input,
                     filter.mode,
                     {{filter.sigmaX, filter.kernelSizeFactorX}, {filter.sigmaY, filter.kernelSizeFactorY}},
                     filter.outputStrategy,
                     filter.accurate,
                     filter.output})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(GaussianFilter2D, GaussianFilter2DScalarRunner)

} // namespace qel::filtering::smoothing
