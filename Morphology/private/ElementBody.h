#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/RecursiveImageFilter.h"
#include "Morphology/private/ElementStrips.h"
#include "Morphology/private/FoldKernels.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace qel::morphology {

/// The extremum over the elements of a run, one element a pass.
///
/// A block is cut into strips whose intermediate rows fit the cache, and a strip is walked slab by slab: rows in a
/// plan, plans in a volume. Each node of the element's graph keeps as many slabs as those behind it look back. The
/// image is read once a strip, with the margin that the whole element needs, and written once.
template <class T> class ElementBody
{
public:
    ElementBody(std::vector<ElementGraph> const& passes, FoldKernels<T> const& kernels, T neutral, bool isVolume)
        : m_kernels(kernels)
        , m_neutral(neutral)
        , m_isVolume(isVolume)
    {
        for (ElementGraph const& pass : passes)
            m_passes.emplace_back(pass, isVolume, sizeof(T));
    }

    RecursiveGrains getGrains() const
    {
        RecursiveGrains grains;
        for (ElementStrips const& pass : m_passes)
            pass.widen(grains);
        return grains;
    }

    template <class B, class Context> void run(B const& block, Context& context) const
    {
        ElementStrips const& strips = m_passes[context.getPass()];
        auto const overlap = context.getOverlap(strips.influence());
        for (B const& strip : strips.cut(block)) {
            auto const box = Context::RowCacheReadWrite::Row::safeBoxOf(strip, overlap, *context.getDestinationView());
            runStrip(strips, strip, *context.getSourceView(), context.getRowCacheReadWrite(1), box, context.getFrame());
        }
    }

private:
    template <class View, class Cache, class Box>
    void runStrip(ElementStrips const& strips, access::Block const& strip, View const& source, Cache& cache,
                  Box const& box, BaseTbbAlgorithm const& frame) const;

    std::vector<ElementStrips> m_passes;
    FoldKernels<T> m_kernels;
    T m_neutral;
    bool m_isVolume;
};

template <class T>
template <class View, class Cache, class Box>
void ElementBody<T>::runStrip(ElementStrips const& strips, access::Block const& strip, View const& source, Cache& cache,
                              Box const& box, BaseTbbAlgorithm const& frame) const
{
    using Node = ElementStrips::Node;
    auto const cols = static_cast<long>(strip.getNbCols());
    auto const rows = static_cast<long>(m_isVolume ? strip.getNbRows() : 1);
    auto const slabs = static_cast<long>(m_isVolume ? strip.getNbPlans() : strip.getNbRows());
    std::vector<Node> const nodes = strips.layOut(cols, rows);
    auto const buffer = std::make_unique_for_overwrite<T[]>(nodes.back().bufferEnd + static_cast<std::size_t>(cols));
    T* const outside = buffer.get() + nodes.back().bufferEnd; // a row of what stands outside of the image
    std::fill_n(outside, cols, m_neutral);
    std::vector<T const*> taps(strips.mostTaps() + 1);

    auto const rowOf = [&](Node const& node, long slab, long row) {
        return buffer.get() + node.bufferBegin + node.rowInBuffer(slab, row) * node.stride;
    };
    auto const position = [&](long slab, long row, long column) {
        access::RowPosition at;
        at.column = static_cast<long>(strip.colsBegin()) + column;
        at.row = static_cast<long>(strip.rowsBegin()) + (m_isVolume ? row : slab);
        at.plan = static_cast<long>(strip.plansBegin()) + (m_isVolume ? slab : 0);
        at.timeSeries = static_cast<long>(strip.timeSeriesBegin());
        at.spectralSeries = static_cast<long>(strip.spectralSeriesBegin());
        return at;
    };

    for (long step = strips.firstStep(); step < slabs; ++step) {
        if (frame.isCancelled())
            return;
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            Node const& node = nodes[index];
            long const slab = step + node.slabs.highest;
            if (slab < node.slabs.lowest)
                continue;
            bool const isLast = index + 1 == nodes.size();
            auto const count = static_cast<std::size_t>(cols + node.cols.highest - node.cols.lowest);
            auto const& steps = strips.tapsOf(index);
            for (std::size_t i = 0; i < steps.size(); ++i) {
                ElementStrips::Tap const& tap = steps[i];
                Node const& from = nodes[tap.node];
                taps[i] = rowOf(from, slab + tap.slab, node.rows.lowest + tap.row) +
                          (node.cols.lowest + tap.column - from.cols.lowest);
            }
            std::size_t numOfTaps = steps.size();
            if (isLast && strips.reachesOutside())
                taps[numOfTaps++] = outside;
            for (long row = node.rows.lowest; row < rows + node.rows.highest; ++row) {
                if (index == 0) {
                    T* const read = rowOf(node, slab, row);
                    source.read(read, count, position(slab, row, node.cols.lowest));
                    if (m_kernels.clean && !strips.isCopy())
                        m_kernels.clean(read, count, m_neutral);
                }
                if (isLast) {
                    auto& out = cache.getRow(0, count, position(slab, row, 0));
                    if (index == 0)
                        std::copy_n(rowOf(node, slab, row), count, out.data());
                    else
                        m_kernels.fold(taps.data(), numOfTaps, out.data(), count);
                    out.writeRow(box);
                } else if (index != 0) {
                    m_kernels.fold(taps.data(), numOfTaps, rowOf(node, slab, row), count);
                }
                for (std::size_t i = 0; i < steps.size(); ++i)
                    taps[i] += nodes[steps[i].node].stride;
            }
        }
    }
}

} // namespace qel::morphology
