#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/GaussianFilterScalarPrivate.h"

#include <qel/filtering/smoothing/GaussianFilter3D.h>

namespace qel::filtering::smoothing {

namespace {

class GaussianFilter3DScalarRunner : public ScalarRunner<GaussianFilter3D>
{
    void runOn(GaussianFilter3D& filter) const override
    {
        GaussianFilter3DScalarPrivate(filter, {filter.input,
                                               filter.mode,
                                               {{filter.sigmaX, filter.kernelSizeFactorX},
                                                {filter.sigmaY, filter.kernelSizeFactorY},
                                                {filter.sigmaZ, filter.kernelSizeFactorZ}},
                                               filter.outputStrategy,
                                               filter.accurate,
                                               filter.output})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(GaussianFilter3D, GaussianFilter3DScalarRunner)

} // namespace qel::filtering::smoothing
