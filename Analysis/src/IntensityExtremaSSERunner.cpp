#include "Analysis/private/IntensityExtremaSIMDGeneric.h"
#include "Analysis/private/measure.h"
#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/safe_cast.h"
#include "Core/private/LongRows.h"
#include "Core/private/TypeDispatch.h"

#include <qel/analysis/IntensityExtrema.h>
#include <qel/devices/Cpu.h>

namespace xsimd {
struct sse4_1; // its packets are seen by the kernel's unit alone
}

namespace qel::analysis {

namespace {

struct IntensityExtremaSSEDispatcher
{
    template <class T> static void run(IntensityExtrema* extrema)
    {
        IntensityExtremaSIMDGeneric<T, xsimd::sse4_1> body;
        measure<T, SimdVec::arch_128_tag>(*extrema, LongRows({extrema->input})[0],
                                          access::ContinueBorderCondition<T>::New(), body);
        storeExtrema(*extrema, body);
    }
};

class IntensityExtremaSSERunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const override
    {
        auto* const extrema = helper::safe_cast<IntensityExtrema*>(algorithm);
        tmpl_dispatch::Visitor1Args<PacketVoxelTypes, IntensityExtremaSSEDispatcher, IntensityExtrema*>()(
            extrema->input.get()->getVoxelType(), extrema);
    }

    bool isRunnable(BaseAlgorithm* algorithm) const override
    {
        devices::Cpu const& cpu = devices::Cpu::getDevice();
        auto const* const extrema = helper::safe_cast<IntensityExtrema*>(algorithm);
        return cpu.hasSSE() && cpu.getSSELevel() > 64 && hasPacketForm(extrema->input.get()->getVoxelType());
    }

    OptimLevelType getOptimType() const override { return VEC_SSE; }
};

} // namespace

QEL_REGISTER_RUNNER(IntensityExtrema, IntensityExtremaSSERunner)

} // namespace qel::analysis
