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
/// A block is cut into strips whose intermediate rows stay in the caches; a strip is walked slab by slab: rows in a
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
    ElementStrips::Layout const layout = strips.layOut(cols, rows);
    auto const buffer = std::make_unique_for_overwrite<T[]>(layout.size + static_cast<std::size_t>(cols));
    T* const outside = buffer.get() + layout.size; // a row of what stands outside of the image
    std::fill_n(outside, cols, m_neutral);
    std::vector<T const*> taps(strips.mostTaps() + 1);

    access::RowPosition const origin{static_cast<long>(strip.colsBegin()), static_cast<long>(strip.rowsBegin()),
                                     static_cast<long>(strip.plansBegin()), static_cast<long>(strip.timeSeriesBegin()),
                                     static_cast<long>(strip.spectralSeriesBegin())};
    auto const position = [&](long slab, long row, long column) {
        access::RowPosition at = origin;
        at.column += column;
        (m_isVolume ? at.plan : at.row) += slab;
        at.row += row;
        return at;
    };

    std::vector<long> newest = layout.newest; // the place of each node's slab of this step
    for (long step = strips.firstStep(); step < slabs; ++step) {
        if (frame.isCancelled())
            return;
        for (std::size_t index = 0; index < layout.nodes.size(); ++index) {
            Node const& node = layout.nodes[index];
            long const slab = step + node.slabs.highest;
            if (slab < node.slabs.lowest)
                continue;
            auto const count = static_cast<std::size_t>(cols + node.cols.highest - node.cols.lowest);
            bool const isLast = index + 1 == layout.nodes.size();
            T* target = buffer.get() + node.bufferBegin + static_cast<std::size_t>(newest[index]) * node.slabSize;
            long const lastRow = rows + node.rows.highest;
            if (index == 0) {
                for (long row = node.rows.lowest; row < lastRow; ++row) {
                    source.read(target, count, position(slab, row, node.cols.lowest));
                    if (isLast) {
                        auto& out = cache.getRow(0, count, position(slab, row, 0));
                        std::copy_n(target, count, out.data());
                        out.writeRow(box);
                    } else if (m_kernels.clean) {
                        m_kernels.clean(target, count, m_neutral);
                    }
                    target += node.stride;
                }
                continue;
            }

            auto const& steps = layout.taps[index];
            for (std::size_t i = 0; i < steps.size(); ++i) {
                Node const& from = layout.nodes[steps[i].node];
                long place = newest[steps[i].node] - steps[i].slabsBack;
                if (place < 0)
                    place += from.ringSlabs;
                taps[i] =
                    buffer.get() + from.bufferBegin + static_cast<std::size_t>(place) * from.slabSize + steps[i].inSlab;
            }
            std::size_t numOfTaps = steps.size();
            if (isLast && strips.reachesOutside())
                taps[numOfTaps++] = outside;
            for (long row = node.rows.lowest; row < lastRow; ++row) {
                if (isLast) {
                    auto& out = cache.getRow(0, count, position(slab, row, 0));
                    m_kernels.fold(taps.data(), numOfTaps, out.data(), count);
                    out.writeRow(box);
                } else {
                    m_kernels.fold(taps.data(), numOfTaps, target, count);
                    target += node.stride;
                }
                for (std::size_t i = 0; i < steps.size(); ++i)
                    taps[i] += layout.nodes[steps[i].node].stride;
            }
        }
        for (std::size_t index = 0; index < newest.size(); ++index)
            if (++newest[index] == layout.nodes[index].ringSlabs)
                newest[index] = 0;
    }
}

} // namespace qel::morphology
