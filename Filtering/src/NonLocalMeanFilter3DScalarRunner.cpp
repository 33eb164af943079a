#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Filtering/private/NonLocalMeanScalarPrivate.h"

#include <qel/filtering/smoothing/NonLocalMeanFilter3D.h>

namespace qel::filtering::smoothing {

namespace {

class NonLocalMeanFilter3DScalarRunner : public ScalarRunner<NonLocalMeanFilter3D>
{
    void runOn(NonLocalMeanFilter3D& filter) const override
    {
        NonLocalMeanScalarPrivate(filter,
                                  {filter.input, filter.output, filter.patchSize, filter.searchWindowSize,
                                   filter.similarity.get().asDouble(), filter.searchWindowShape == QEL_BALL, true})
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(NonLocalMeanFilter3D, NonLocalMeanFilter3DScalarRunner)

} // namespace qel::filtering::smoothing
