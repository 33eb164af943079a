#include "Morphology/private/runElement.h"

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/TypeDispatch.h"
#include "Morphology/private/ElementBody.h"

#include <qel/devices/Cpu.h>

#include <limits>

namespace xsimd {
struct sse4_1; // its loops are compiled in units of their own
struct avx2;
} // namespace xsimd

namespace qel::morphology {

namespace {

template <class T> FoldKernels<T> kernelsFor(bool isErosion, bool withPackets)
{
    if constexpr (sizeof(T) < 8 || std::is_floating_point_v<T>)
        if (withPackets)
            return devices::Cpu::getDevice().getAVXLevel() > 1 && __builtin_cpu_supports("avx2")
                       ? foldKernels<xsimd::avx2, T>(isErosion)
                       : foldKernels<xsimd::sse4_1, T>(isErosion);
    return foldKernels<SimdVec::arch_scalar_tag, T>(isErosion);
}

template <class T, class DimTag>
void runPasses(BaseAlgorithm& owner, ElementBody<T>& body, unsigned long numOfPasses, ImageModel const* input,
               ImageModel* output, T neutral)
{
    RecursiveImageFilter<T, T, SimdVec::arch_scalar_tag, ElementBody<T>, DimTag> filter(&owner, &body);
    filter.setInput(input, access::FixedBorderCondition<T>::New(neutral));
    filter.setOutput(output, access::FixedBorderCondition<T>::New(neutral));
    filter.setNumOfIterations(numOfPasses);
    DoRunRecursiveImage<DimTag>::run(&filter);
}

} // namespace

template <class T>
void runElement(BaseAlgorithm& owner, bool isErosion, StructuringElement const& element, ImageModel const* input,
                ImageModel* output, bool withPackets)
{
    auto const passes = element.passes(output->getNumOf(COLUMNS), output->getNumOf(ROWS), output->getNumOf(PLANS));
    // Outside of the image stands what never wins. It is finite: an infinity loses against it.
    T const neutral = isErosion ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
    bool const isVolume = isOfVolumes(element.form);
    ElementBody<T> body(passes, kernelsFor<T>(isErosion, withPackets), neutral, isVolume);
    if (isVolume)
        runPasses<T, Filter3dTag>(owner, body, passes.size(), input, output, neutral);
    else
        runPasses<T, Filter2dTag>(owner, body, passes.size(), input, output, neutral);
}

#define QEL_INSTANTIATE(T)                                                                                             \
    template void runElement<T>(BaseAlgorithm&, bool, StructuringElement const&, ImageModel const*, ImageModel*, bool);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::morphology
