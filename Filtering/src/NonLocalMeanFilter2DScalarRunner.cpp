#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/NonLocalMeanScalarPrivate.h"

#include <qel/filtering/smoothing/NonLocalMeanFilter2D.h>

namespace qel::filtering::smoothing {

namespace {

class NonLocalMeanFilter2DScalarRunner : public ScalarRunner<NonLocalMeanFilter2D>
{
    void runOn(NonLocalMeanFilter2D& filter) const override
    {
        NonLocalMeanScalarPrivate(filter,
                                  {filter.input, filter.output, filter.patchSize, filter.searchWindowSize,
                                   filter.similarity.get().asDouble(), filter.searchWindowShape == QEL_DISK, false})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(NonLocalMeanFilter2D, NonLocalMeanFilter2DScalarRunner)

} // namespace qel::filtering::smoothing
