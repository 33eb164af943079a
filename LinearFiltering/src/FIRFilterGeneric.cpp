#include "LinearFiltering/private/FIRFilterGeneric.h"

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"

#include <qel/ImageModelAdapter.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace qel::linear_filtering {

namespace {

long withinMirror(long offset, unsigned long size)
{
    long const length = static_cast<long>(size);
    if (length == 0 || (offset >= -length && offset <= length))
        return offset;
    long const remainder = offset % (2 * length);
    if (remainder > length)
        return remainder - 2 * length;
    return remainder < -length ? remainder + 2 * length : remainder;
}

void extend(Step& lowest, Step& highest, Step const& step)
{
    lowest = {std::min(lowest.x, step.x), std::min(lowest.y, step.y), std::min(lowest.z, step.z)};
    highest = {std::max(highest.x, step.x), std::max(highest.y, step.y), std::max(highest.z, step.z)};
}

/// Blocks whose rows in reach stay in the cache, and that are much longer than the reach: what lies beyond their ends
/// is read twice.
template <class T> boost::shared_ptr<AbstractPartitionerPolicy> partitionFor(FIRPoints<T> const& points)
{
    auto const extent = [](long lowest, long highest) { return static_cast<unsigned long>(highest - lowest); };
    unsigned long const beyondCols = extent(points.lowest.x, points.highest.x);
    unsigned long const beyondRows = extent(points.lowest.y, points.highest.y);
    unsigned long const beyondPlans = extent(points.lowest.z, points.highest.z);
    // Whole rows where they fit: memory is read and written in longer runs.
    unsigned long const inCache = (384ul << 10) / sizeof(T);
    if (beyondPlans == 0)
        return boost::make_shared<PartitionerInfoFixed>(std::max({inCache / (beyondRows + 1), 1024ul, 8 * beyondCols}),
                                                        std::max(64ul, 16 * beyondRows), 16);
    unsigned long const rowsInCache = inCache / (256 * (beyondPlans + 1));
    return boost::make_shared<PartitionerInfoFixed>(
        std::max(256ul, 8 * beyondCols),
        std::max({rowsInCache > beyondRows ? rowsInCache - beyondRows : 0, 8ul, beyondRows}),
        std::max(128ul, 16 * beyondPlans));
}

} // namespace

template <class T>
FIRPoints<T>::FIRPoints(kernel::WeightedOffsets<kernel::Offset3D> const& kernel, access::Region const& region)
{
    std::map<std::pair<long, long>, std::size_t> numbers;
    for (kernel::Offset3D const& offset : kernel.offsets) {
        Step const step{withinMirror(offset.x, region.getNbCols()), withinMirror(offset.y, region.getNbRows()),
                        withinMirror(offset.z, region.getNbPlans())};
        auto const [place, isNew] = numbers.try_emplace({step.y, step.z}, lines.size());
        if (isNew)
            lines.push_back({step.y, step.z});
        lineOf.push_back(place->second);
        columnOf.push_back(step.x);
        extend(lowest, highest, step);
    }
    for (double const weight : kernel.weights)
        weights.push_back(static_cast<T>(weight));
}

template <class T> AlgoBorderInfluence FIRPoints<T>::reach() const
{
    auto const further = [](long low, long high) { return static_cast<unsigned long>(std::max(-low, high)); };
    return AlgoBorderInfluence(further(lowest.x, highest.x), further(lowest.y, highest.y), further(lowest.z, highest.z),
                               0, 0);
}

template <class T, class DimTag>
void filterByKernel(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output,
                    kernel::WeightedOffsets<kernel::Offset3D> const& kernel, WeightedSum<T> sum)
{
    ImageModelAdapter const in(const_cast<ImageModel*>(input), VoxelTypeOf<T>::value);
    ImageModelAdapter const out(output, VoxelTypeOf<T>::value);
    access::Region const whole(0, input->getNumOf(ROWS), 0, input->getNumOf(COLUMNS), 0, input->getNumOf(PLANS), 0, 1,
                               0, 1);
    FIRPoints<T> const points(kernel, whole);
    FIRToValue<T> body(points, sum);
    ImageToImageFilter<T, T, SimdVec::arch_scalar_tag, FIRToValue<T>, DimTag, FilterWithoutReductionTag> filter(&owner,
                                                                                                                &body);
    filter.setPartitionerInformation(partitionFor(points));
    filter.setBlocksAreFixed(true);
    filter.setInput(in.getImage(), access::MirrorBorderCondition<T>::New());
    filter.setOutput(out.getImage(), access::FixedBorderCondition<T>::New(T(0)));
    filter.run();
}

#define QEL_INSTANTIATE(T, DimTag)                                                                                     \
    template void filterByKernel<T, DimTag>(BaseAlgorithm&, ImageModel const*, ImageModel*,                            \
                                            kernel::WeightedOffsets<kernel::Offset3D> const&, WeightedSum<T>);
QEL_INSTANTIATE(float, Filter2dTag)
QEL_INSTANTIATE(float, Filter3dTag)
QEL_INSTANTIATE(double, Filter2dTag)
QEL_INSTANTIATE(double, Filter3dTag)
#undef QEL_INSTANTIATE

} // namespace qel::linear_filtering
