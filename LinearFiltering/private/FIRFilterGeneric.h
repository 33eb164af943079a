#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/Frames.h"
#include "Core/private/Kernel/KernelPrivate.h"
#include "LinearFiltering/private/FIRKernels.h"
#include "LinearFiltering/private/RowsOfBlock.h"

#include <tbb/enumerable_thread_specific.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace qel::linear_filtering {

/// A kernel, as rows of one image see it.
template <class T> struct FIRPoints
{
    struct Line
    {
        long y;
        long z;
    };

    /// Outside of the image stands its mirror image, and so an offset may be taken modulo twice the size: no kernel
    /// reaches further than that.
    FIRPoints(kernel::WeightedOffsets<kernel::Offset3D> const& kernel, access::Region const& region);

    /// Alike in both directions of an axis. A block's rows may be read from beyond its far side too, in the mirror.
    AlgoBorderInfluence reach() const;

    std::vector<Line> lines; // rows with a point in them, each once
    std::vector<std::size_t> lineOf;
    std::vector<long> columnOf;
    std::vector<T> weights;
    Step lowest{0, 0, 0};
    Step highest{0, 0, 0};
};

/// The body: the weighted sum of the voxels at the points of a kernel.
template <class T> class FIRToValue
{
public:
    FIRToValue(FIRPoints<T> const& points, WeightedSum<T> sum)
        : m_points(points)
        , m_sum(sum)
    {}

    template <class Block, class Filter> void run(Block const& block, Filter& filter)
    {
        using OutputRow = typename Filter::OutputView::Row;
        auto const& in = *filter.getInputView();
        auto& out = *filter.getOutputView();
        bool const isInPlace = access::areOnOneImage(in.getInterface(), out.getInterface());
        auto const outputs = out.createRowCacheReadWrite(1);
        auto const safe = OutputRow::safeBoxOf(block, overlapBetween(in, out, m_points.reach()), out);
        // Taken out: an image whose rows are read by tasks of its own may let this thread begin another block
        // meanwhile.
        RowMemory<T> memory = std::exchange(m_memory.local(), {});
        RowsOfBlock<typename Filter::InputView> rows(in, block, m_points.lowest, m_points.highest, memory);
        std::vector<T const*> lines(m_points.lines.size());
        std::vector<T const*> points(m_points.weights.size());
        for (long z = 0; z < static_cast<long>(block.getNbPlans()); ++z) {
            for (long y = 0; y < static_cast<long>(block.getNbRows()); ++y) {
                if (isInPlace)
                    rows.readAhead(y, z);
                for (std::size_t line = 0; line < lines.size(); ++line)
                    lines[line] = rows.row(y + m_points.lines[line].y, z + m_points.lines[line].z);
                for (std::size_t point = 0; point < points.size(); ++point)
                    points[point] = lines[m_points.lineOf[point]] + m_points.columnOf[point];
                auto& row = outputs->getRowInBlock(0, block.getNbCols(), block, 0, y, z, 0, 0);
                m_sum(points.data(), m_points.weights.data(), points.size(), row.data(), block.getNbCols());
                row.writeRow(safe);
            }
        }
        m_memory.local() = std::move(memory);
    }

private:
    FIRPoints<T> const& m_points;
    WeightedSum<T> m_sum;
    tbb::enumerable_thread_specific<RowMemory<T>> m_memory;
};

/// Runs a filter over whole images, plan by plan or through space, in T.
template <class T, class DimTag>
void filterByKernel(BaseAlgorithm& owner, ImageModel const* input, ImageModel* output,
                    kernel::WeightedOffsets<kernel::Offset3D> const& kernel, WeightedSum<T> sum);

} // namespace qel::linear_filtering
