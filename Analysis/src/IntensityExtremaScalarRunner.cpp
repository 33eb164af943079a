#include "Analysis/private/IntensityExtremaScalarGeneric.h"
#include "Analysis/private/measure.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/LongRows.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"

#include <qel/analysis/IntensityExtrema.h>

namespace qel::analysis {

namespace {

struct IntensityExtremaScalarDispatcher
{
    template <class T> static void run(IntensityExtrema* extrema)
    {
        IntensityExtremaScalarGeneric<T> body;
        measure<T, SimdVec::arch_scalar_tag>(*extrema, LongRows({extrema->input})[0],
                                             access::FixedBorderCondition<T>::New(T(0)), body);
        storeExtrema(*extrema, body);
    }
};

class IntensityExtremaScalarRunner : public ScalarRunner<IntensityExtrema>
{
    void runOn(IntensityExtrema& extrema) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, IntensityExtremaScalarDispatcher, IntensityExtrema*>()(
            extrema.input.get()->getVoxelType(), &extrema);
    }
};

} // namespace

QEL_REGISTER_RUNNER(IntensityExtrema, IntensityExtremaScalarRunner)

} // namespace qel::analysis
