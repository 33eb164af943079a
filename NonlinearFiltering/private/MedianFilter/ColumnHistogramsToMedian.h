#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/Frames.h"
#include "NonlinearFiltering/private/MedianFilter/ColumnHistograms.h"
#include "NonlinearFiltering/private/MedianFilter/KeyPlans.h"
#include "NonlinearFiltering/private/MedianFilter/MedianDimension.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

#include <algorithm>
#include <vector>

namespace qel::nonlinear_filtering {

/// The median under a square, for keys of 8 bits, at a cost that does not grow with the radius.
template <class Keys> class ColumnHistogramsToMedian
{
public:
    ColumnHistogramsToMedian(MedianFilterScalarPrivate const& median, Keys const& keys)
        : m_keys(keys)
        , m_radius(median.settings().radius)
    {}

    template <class Filter> void run(access::Block2d const& block, Filter& filter)
    {
        using T = typename Filter::InputView::VoxelType;

        unsigned long const count = block.getNbCols();
        unsigned long const columns = count + 2 * m_radius;
        std::vector<unsigned char> coarse(columns * 16);
        std::vector<unsigned char> fine(columns * 256);
        std::vector<unsigned char> medians(count);
        ColumnHistograms const histograms{coarse.data(), fine.data(), columns, m_radius};

        long const radius = static_cast<long>(m_radius);
        KeyPlans<typename Filter::InputView, Keys> keys(*filter.getInputView(), m_keys, block, radius, 0, 0);
        keys.fetch(0);
        auto const rowAt = [&](long row) { return keys.at(row, 0) - radius; };
        for (long row = -radius; row < radius; ++row)
            moveColumns(histograms, rowAt(row), nullptr);

        auto const cache = filter.getOutputView()->createRowCacheReadWrite(1);
        access::OverlapBorder const overlap = overlapBetween(*filter.getInputView(), *filter.getOutputView(),
                                                             AlgoBorderInfluence(m_radius, m_radius, 0, 0, 0));
        for (long row = 0; row < static_cast<long>(block.getNbRows()); ++row) {
            if (filter.isCancelled())
                return;
            moveColumns(histograms, rowAt(row + radius), row > 0 ? rowAt(row - radius - 1) : nullptr);
            mediansOfColumns(histograms, medians.data(), count);
            auto& out = cache->getRowInBlock(0, count, block, 0, row, 0, 0, 0);
            std::transform(medians.begin(), medians.end(), out.data(),
                           [conversion = m_keys](unsigned char key) -> T { return conversion.voxelOf(key); });
            out.writeRow(block, overlap);
        }
    }

private:
    Keys m_keys;
    unsigned long m_radius;
};

} // namespace qel::nonlinear_filtering
