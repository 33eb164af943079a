#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "LinearFiltering/private/FIRFilterDispatcher.h"

namespace qel::linear_filtering {

namespace {

struct OnVoxels
{
    template <class T> static WeightedSum<T> weightedSum() { return &weightedSumOfRows<T>; }
};

template <class Filter, class Dispatcher> class FIRFilterScalarRunner : public ScalarRunner<Filter>
{
    void runOn(Filter& filter) const override { Dispatcher::run(filter); }
};

using FIRFilter2DScalarRunner =
    FIRFilterScalarRunner<FiniteImpulseResponseFilter2D, FIRFilterDispatcher<Filter2dTag, OnVoxels>>;
using FIRFilter3DScalarRunner =
    FIRFilterScalarRunner<FiniteImpulseResponseFilter3D, FIRFilterDispatcher<Filter3dTag, OnVoxels>>;

} // namespace

QEL_REGISTER_RUNNER(FiniteImpulseResponseFilter2D, FIRFilter2DScalarRunner)
QEL_REGISTER_RUNNER(FiniteImpulseResponseFilter3D, FIRFilter3DScalarRunner)

} // namespace qel::linear_filtering
