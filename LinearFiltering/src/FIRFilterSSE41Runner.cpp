#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "LinearFiltering/private/FIRFilterDispatcher.h"

#include <qel/devices/Cpu.h>

namespace xsimd { // their packets are seen by the kernels' units alone
struct sse4_1;
struct avx2;
} // namespace xsimd

namespace qel::linear_filtering {

namespace {

/// The sums of wider packets have the same bits. The question also asks whether the system keeps the wider registers.
struct OnPackets
{
    template <class T> static WeightedSum<T> weightedSum()
    {
        return __builtin_cpu_supports("avx2") ? &weightedSumOfPackets<xsimd::avx2, T>
                                              : &weightedSumOfPackets<xsimd::sse4_1, T>;
    }
};

template <class Filter, class Dispatcher> class FIRFilterSSE41Runner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override { Dispatcher::run(*helper::safe_cast<Filter*>(algorithm)); }
    bool isRunnable(BaseAlgorithm*) const override
    {
        devices::Cpu const& cpu = devices::Cpu::getDevice();
        return cpu.hasSSE() && cpu.getSSELevel() >= 65;
    }
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
