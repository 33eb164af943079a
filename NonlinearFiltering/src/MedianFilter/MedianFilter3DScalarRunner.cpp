#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

#include <qel/nonlinear_filtering/MedianFilter3D.h>

namespace qel::nonlinear_filtering {

namespace {

class MedianFilter3DScalarRunner : public ScalarRunner<MedianFilter3D>
{
    void runOn(MedianFilter3D& filter) const override
    {
        MedianFilter3DScalarPrivate(filter, {filter.input, filter.output, filter.neighborhoodSize,
                                             filter.neighborhoodShape == QEL_BALL, filter.searchMode})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(MedianFilter3D, MedianFilter3DScalarRunner)

} // namespace qel::nonlinear_filtering
