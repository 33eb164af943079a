#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "LinearFiltering/private/FIRFilterDispatcher.h"

namespace qel::linear_filtering {

namespace {

struct OnPackets
{
    template <class T> static WeightedSum<T> weightedSum() { return weightedSumOfProcessor<T>(); }
};

template <class Filter, class Dispatcher> class FIRFilterSSE41Runner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override { Dispatcher::run(*helper::safe_cast<Filter*>(algorithm)); }
    bool isRunnable(BaseAlgorithm*) const override { return hasPackets(); }
    OptimLevelType getOptimType() const override { return VEC_SSE; }
};

using FIRFilter2DSSE41Runner =
    FIRFilterSSE41Runner<FiniteImpulseResponseFilter2D, FIRFilterDispatcher<Filter2dTag, OnPackets>>;
using FIRFilter3DSSE41Runner =
    FIRFilterSSE41Runner<FiniteImpulseResponseFilter3D, FIRFilterDispatcher<Filter3dTag, OnPackets>>;

} // namespace

QEL_REGISTER_RUNNER(FiniteImpulseResponseFilter2D, FIRFilter2DSSE41Runner)
QEL_REGISTER_RUNNER(FiniteImpulseResponseFilter3D, FIRFilter3DSSE41Runner)

} // namespace qel::linear_filtering
