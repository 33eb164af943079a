#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/Frames.h"
#include "Core/private/SimdVec.h"
#include "NonlinearFiltering/private/MedianFilter/KeyPlans.h"
#include "NonlinearFiltering/private/MedianFilter/MedianDimension.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"
#include "NonlinearFiltering/private/MedianFilter/MedianNetworkKernel.h"
#include "NonlinearFiltering/private/MedianFilter/SelectionNetwork.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace qel::nonlinear_filtering {

/// The kernels for this processor.
template <class Key> struct NetworkKernels
{
    void (*run)(NetworkStep const* steps, unsigned long count, Key* const* registers, unsigned long lanes);
    void (*medianOf9)(Key const* above, Key const* here, Key const* below, Key* medians, unsigned long count);
};
template <class Key> NetworkKernels<Key> networkKernels();

/// The median by a selection network over whole rows: for small windows, of any shape and voxel type.
template <class DimTag, class Keys> class RowNetworkToMedian
{
public:
    using Dimension = MedianDimension<DimTag>;

    RowNetworkToMedian(SelectionNetwork network, MedianSettings const& settings, Keys const& keys)
        : m_keys(keys)
        , m_radius(static_cast<long>(settings.radius))
        , m_isThreeByThree(!Dimension::isVolume && settings.radius == 1 && !settings.isRound)
        , m_network(std::move(network))
    {}

    template <class Filter> void run(BlockOf<DimTag> const& block, Filter& filter)
    {
        using T = typename Filter::InputView::VoxelType;
        using Key = typename Keys::Key;

        unsigned long const segment = segmentOf(sizeof(Key));
        unsigned long const room = segment + m_network.excess() + networkPacket<Key>;
        long const planReach = Dimension::isVolume ? m_radius : 0;
        KeyPlans<typename Filter::InputView, Keys> plans(*filter.getInputView(), m_keys, block, m_radius, planReach,
                                                         room);
        for (long plan = -planReach; plan < planReach; ++plan)
            plans.fetch(plan);

        unsigned long const numOfInputs = m_network.inputs().size();
        std::vector<Key*> registers(numOfInputs + m_network.numOfTemporaries());
        // Whole lines of the cache, and an odd number of them, so that they do not crowd in the same places of it.
        unsigned long const stride = ((room + networkPacket<Key> - 1) / networkPacket<Key> | 1) * networkPacket<Key>;
        std::vector<Key, SimdVec::AlignedAllocator<Key, 64>> temporaries(m_network.numOfTemporaries() * stride);
        for (unsigned long i = 0; i < m_network.numOfTemporaries(); ++i)
            registers[numOfInputs + i] = temporaries.data() + i * stride;

        auto const cache = filter.getOutputView()->createRowCacheReadWrite(1);
        access::OverlapBorder const overlap = overlapBetween(*filter.getInputView(), *filter.getOutputView(),
                                                             Dimension::reachOf(static_cast<unsigned long>(m_radius)));
        NetworkKernels<Key> const kernels = networkKernels<Key>();
        std::vector<Key> medians;
        unsigned long const count = block.getNbCols();
        for (long plan = 0; plan < static_cast<long>(block.getNbPlans()); ++plan) {
            plans.fetch(plan + planReach);
            for (long row = 0; row < static_cast<long>(block.getNbRows()); ++row) {
                if (filter.isCancelled())
                    return;
                auto& out = cache->getRowInBlock(0, count, block, 0, row, plan, 0, 0);
                if (m_isThreeByThree) {
                    if constexpr (Keys::areVoxels) {
                        kernels.medianOf9(plans.at(row - 1, 0), plans.at(row, 0), plans.at(row + 1, 0), out.data(),
                                          count);
                    } else {
                        medians.resize(count);
                        kernels.medianOf9(plans.at(row - 1, 0), plans.at(row, 0), plans.at(row + 1, 0), medians.data(),
                                          count);
                        std::transform(medians.begin(), medians.end(), out.data(),
                                       [keys = m_keys](Key key) -> T { return keys.voxelOf(key); });
                    }
                    out.writeRow(block, overlap);
                    continue;
                }
                for (unsigned long i = 0; i < numOfInputs; ++i)
                    registers[i] = plans.at(row + m_network.inputs()[i].row, plan + m_network.inputs()[i].plan);
                for (unsigned long x = 0; x < count; x += segment) {
                    kernels.run(m_network.steps().data(), m_network.steps().size(), registers.data(), segment);
                    Key const* const found = registers[m_network.result()] + m_network.resultLane();
                    std::transform(found, found + std::min(segment, count - x), out.data() + x,
                                   [keys = m_keys](Key key) -> T { return keys.voxelOf(key); });
                    for (unsigned long i = 0; i < numOfInputs; ++i)
                        registers[i] += segment;
                }
                out.writeRow(block, overlap);
            }
        }
    }

private:
    /// As many lanes as leave all temporaries in the cache, but so many that a step is worth its call.
    unsigned long segmentOf(unsigned long keySize) const
    {
        unsigned long const bytes = 24576 / std::max(m_network.numOfTemporaries(), 1ul) / 64 * 64;
        return std::clamp(bytes, 256ul, 2048ul) / keySize;
    }

    Keys m_keys;
    long m_radius;
    bool m_isThreeByThree;
    SelectionNetwork m_network;
};

} // namespace qel::nonlinear_filtering
