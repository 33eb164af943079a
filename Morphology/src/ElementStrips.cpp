#include "Morphology/private/ElementStrips.h"

#include <algorithm>
#include <limits>

namespace qel::morphology {

namespace {

/// Rows of so many bytes take twice the time of a few. That is well beyond the second-level cache: rows are read in
/// order, and come in time from the third.
constexpr double SLOW_BYTES = 8 * 1024 * 1024;
/// What a call for one row costs, in bytes read.
constexpr double ROW_OVERHEAD = 256;

} // namespace

ElementStrips::ElementStrips(ElementGraph const& graph, bool isVolume, std::size_t voxelSize)
    : m_nodes(graph.nodes.size())
    , m_reachesOutside(graph.reachesOutside)
    , m_isVolume(isVolume)
    , m_voxelSize(voxelSize)
{
    for (auto const& node : graph.nodes) {
        m_taps.emplace_back();
        for (ElementGraph::Tap const& tap : node) {
            auto const [x, y, z] = tap.offset;
            m_taps.back().push_back(isVolume ? Tap{tap.node, z, y, x} : Tap{tap.node, y, 0, x});
        }
        m_mostTaps = std::max(m_mostTaps, node.size());
    }

    auto const reaches = graph.reaches();
    for (std::size_t index = 0; index < m_nodes.size(); ++index) {
        auto const& [lowest, highest] = reaches[index];
        Reach& node = m_nodes[index];
        node.cols = {lowest[0], highest[0]};
        node.rows = isVolume ? Interval{lowest[1], highest[1]} : Interval{0, 0};
        node.slabs = isVolume ? Interval{lowest[2], highest[2]} : Interval{lowest[1], highest[1]};
        if (index == 0)
            // In place a slab must have been read before it is written.
            for (Interval* const axis : {&node.slabs, &node.rows, &node.cols})
                *axis = {std::min(axis->lowest, 0l), std::max(axis->highest, 0l)};
        m_firstStep = std::min(m_firstStep, node.slabs.lowest - node.slabs.highest);
    }
    for (std::size_t index = 0; index < m_nodes.size(); ++index)
        for (Tap const& tap : m_taps[index]) {
            Reach& from = m_nodes[tap.node];
            from.ringSlabs = std::max(from.ringSlabs, from.slabs.highest - m_nodes[index].slabs.highest - tap.slab + 1);
        }
}

AlgoBorderInfluence ElementStrips::influence() const
{
    Reach const& image = m_nodes.front();
    auto const below = [](Interval const& axis) { return static_cast<unsigned long>(std::max(-axis.lowest, 0l)); };
    auto const above = [](Interval const& axis) { return static_cast<unsigned long>(std::max(axis.highest, 0l)); };
    Interval const rows = m_isVolume ? image.rows : image.slabs;
    Interval const plans = m_isVolume ? image.slabs : Interval{};
    return {below(image.cols), above(image.cols), below(rows), above(rows), below(plans), above(plans), 0, 0, 0, 0};
}

void ElementStrips::widen(RecursiveGrains& grains) const
{
    Reach const& image = m_nodes.front();
    auto const widened = [](unsigned long grain, Interval const& axis) {
        return std::max(grain, 2 * static_cast<unsigned long>(axis.highest - axis.lowest));
    };
    grains.cols = widened(grains.cols, image.cols);
    grains.rows = widened(grains.rows, m_isVolume ? image.rows : image.slabs);
    grains.plans = widened(grains.plans, m_isVolume ? image.slabs : Interval{});
}

ElementStrips::Layout ElementStrips::layOut(long cols, long rows) const
{
    Layout layout;
    for (std::size_t index = 0; index < m_nodes.size(); ++index) {
        Node& node = layout.nodes.emplace_back();
        static_cast<Reach&>(node) = m_nodes[index];
        node.stride = static_cast<std::size_t>(cols + node.cols.highest - node.cols.lowest);
        node.slabSize = static_cast<std::size_t>(rows + node.rows.highest - node.rows.lowest) * node.stride;
        node.bufferBegin = layout.size;
        if (index == 0 || index + 1 < m_nodes.size())
            layout.size += static_cast<std::size_t>(node.ringSlabs) * node.slabSize;
        long const first = (m_firstStep + node.slabs.highest - node.slabs.lowest) % node.ringSlabs;
        layout.newest.push_back(first < 0 ? first + node.ringSlabs : first);

        auto& taps = layout.taps.emplace_back();
        for (Tap const& tap : m_taps[index]) {
            Node const& from = layout.nodes[tap.node];
            long const row = node.rows.lowest + tap.row - from.rows.lowest;
            long const column = node.cols.lowest + tap.column - from.cols.lowest;
            taps.push_back({tap.node, from.slabs.highest - node.slabs.highest - tap.slab,
                            static_cast<std::size_t>(row) * from.stride + static_cast<std::size_t>(column)});
        }
    }
    return layout;
}

ElementStrips::Size ElementStrips::stripFor(unsigned long cols, unsigned long rows) const
{
    auto const extent = [](Interval const& axis) { return static_cast<double>(axis.highest - axis.lowest); };
    auto const bytes = static_cast<double>(m_voxelSize);
    Size best{cols, rows};
    double lowest = std::numeric_limits<double>::max();
    for (unsigned long colPieces = 1; colPieces == 1 || cols / colPieces >= 32; colPieces *= 2)
        for (unsigned long rowPieces = 1; rowPieces == 1 || rows / rowPieces >= 4; rowPieces *= 2) {
            Size const size{(cols + colPieces - 1) / colPieces, (rows + rowPieces - 1) / rowPieces};
            double accesses = 0;
            double memory = 0;
            for (std::size_t index = 0; index < m_nodes.size(); ++index) {
                Reach const& node = m_nodes[index];
                double const nodeRows = static_cast<double>(size.rows) + extent(node.rows);
                double const nodeCols = (static_cast<double>(size.cols) + extent(node.cols)) * bytes;
                accesses += static_cast<double>(m_taps[index].size() + 1) * nodeRows * (nodeCols + ROW_OVERHEAD);
                memory += static_cast<double>(node.ringSlabs) * nodeRows * nodeCols;
            }
            double const cost = accesses / static_cast<double>(size.cols * size.rows) * (1 + memory / SLOW_BYTES);
            if (cost < lowest) {
                lowest = cost;
                best = size;
            }
        }
    return best;
}

std::vector<access::Block2d> ElementStrips::cut(access::Block2d const& block) const
{
    std::vector<access::Block2d> strips;
    Size const size = stripFor(block.getNbCols(), 1);
    for (unsigned long col = block.colsBegin(); col < block.colsEnd(); col += size.cols)
        strips.emplace_back(access::Range{block.rowsEnd(), block.rowsBegin(), 1},
                            access::Range{std::min(col + size.cols, block.colsEnd()), col, 1}, block.plansBegin(),
                            block.timeSeriesBegin(), block.spectralSeriesBegin());
    return strips;
}

std::vector<access::Block3d> ElementStrips::cut(access::Block3d const& block) const
{
    std::vector<access::Block3d> strips;
    Size const size = stripFor(block.getNbCols(), block.getNbRows());
    for (unsigned long row = block.rowsBegin(); row < block.rowsEnd(); row += size.rows)
        for (unsigned long col = block.colsBegin(); col < block.colsEnd(); col += size.cols)
            strips.emplace_back(access::Range{block.plansEnd(), block.plansBegin(), 1},
                                access::Range{std::min(row + size.rows, block.rowsEnd()), row, 1},
                                access::Range{std::min(col + size.cols, block.colsEnd()), col, 1},
                                block.timeSeriesBegin(), block.spectralSeriesBegin());
    return strips;
}

} // namespace qel::morphology
