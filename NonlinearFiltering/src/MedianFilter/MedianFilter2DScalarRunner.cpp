#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

#include <qel/nonlinear_filtering/MedianFilter2D.h>

namespace qel::nonlinear_filtering {

namespace {

class MedianFilter2DScalarRunner : public ScalarRunner<MedianFilter2D>
{
    void runOn(MedianFilter2D& filter) const override
    {
        MedianFilter2DScalarPrivate(filter, {filter.input, filter.output, filter.neighborhoodSize,
                                             filter.neighborhoodShape == QEL_DISK, filter.searchMode})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(MedianFilter2D, MedianFilter2DScalarRunner)

} // namespace qel::nonlinear_filtering
