#pragma once

#include "Core/private/RecursiveImageFilter.h"
#include "Morphology/private/ElementGraph.h"

#include <qel/AlgoBorderInfluence.h>
#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>

#include <cstddef>
#include <vector>

namespace qel::morphology {

/// How the graph of an element is computed over a block: which strips, and where each node keeps its rows. No voxel
/// type is in sight.
class ElementStrips
{
public:
    /// The steps of a graph, in the axes of a strip.
    struct Tap
    {
        unsigned node;
        long slab, row, column;
    };
    struct Interval
    {
        long lowest = 0;
        long highest = 0;
    };
    /// Which slabs, rows and columns beyond those of the strip a node is computed for, and where they stand.
    struct Node
    {
        Interval slabs, rows, cols;
        long ringSlabs = 0;     // how many are kept
        long rowsInSlab = 0;    // of the strip and beyond
        std::size_t stride = 0; // voxels from row to row
        std::size_t bufferBegin = 0;
        std::size_t bufferEnd = 0;

        std::size_t rowInBuffer(long slab, long row) const
        {
            return static_cast<std::size_t>(((slab - slabs.lowest) % ringSlabs) * rowsInSlab + (row - rows.lowest));
        }
    };

    ElementStrips(ElementGraph const& graph, bool isVolume, std::size_t voxelSize);

    AlgoBorderInfluence influence() const;
    /// A block much smaller than the reach would compute more of its margin than of itself.
    void widen(RecursiveGrains& grains) const;

    std::vector<access::Block2d> cut(access::Block2d const& block) const;
    std::vector<access::Block3d> cut(access::Block3d const& block) const;

    /// Of all nodes, for a strip of this size. The last node needs no memory.
    std::vector<Node> layOut(long cols, long rows) const;
    std::vector<Tap> const& tapsOf(std::size_t node) const { return m_taps[node]; }
    std::size_t mostTaps() const { return m_mostTaps; }
    /// At step s each node computes its slab s + highest; those before step 0 only fill what the others look back at.
    long firstStep() const { return m_firstStep; }
    bool reachesOutside() const { return m_reachesOutside; }
    /// An element of the voxel itself.
    bool isCopy() const { return m_taps.size() == 1 && !m_reachesOutside; }

private:
    struct Size
    {
        unsigned long cols, rows;
    };
    Size stripFor(unsigned long cols, unsigned long rows) const;

    std::vector<std::vector<Tap>> m_taps;
    std::vector<Node> m_nodes;
    std::size_t m_mostTaps = 0;
    long m_firstStep = 0;
    bool m_reachesOutside;
    bool m_isVolume;
    std::size_t m_voxelSize;
};

} // namespace qel::morphology
