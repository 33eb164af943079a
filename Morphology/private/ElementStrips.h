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
    struct Interval
    {
        long lowest = 0;
        long highest = 0;
    };
    /// Which slabs, rows and columns beyond those of the strip a node is computed for.
    struct Reach
    {
        Interval slabs, rows, cols;
        long ringSlabs = 1; // how many slabs those behind it look back at
    };
    /// A node's place in the buffer of a strip.
    struct Node : Reach
    {
        std::size_t stride = 0;   // voxels from row to row
        std::size_t slabSize = 0; // voxels from slab to slab
        std::size_t bufferBegin = 0;
    };
    /// What a tap reads, from the first voxel of a slab of its node on.
    struct PlacedTap
    {
        unsigned node;
        long slabsBack; // from the newest one
        std::size_t inSlab;
    };
    struct Layout
    {
        std::vector<Node> nodes;
        std::vector<std::vector<PlacedTap>> taps;
        std::vector<long> newest; // of each node, the place of its slab of the first step in its ring
        std::size_t size = 0;     // voxels in all
    };

    ElementStrips(ElementGraph const& graph, bool isVolume, std::size_t voxelSize);

    AlgoBorderInfluence influence() const;
    /// A block much smaller than the reach would compute more of its margin than of itself.
    void widen(RecursiveGrains& grains) const;

    std::vector<access::Block2d> cut(access::Block2d const& block) const;
    std::vector<access::Block3d> cut(access::Block3d const& block) const;

    /// For a strip of this size. The last node needs no memory.
    Layout layOut(long cols, long rows) const;
    std::size_t mostTaps() const { return m_mostTaps; }
    /// At step s each node computes its slab s + highest; those before step 0 only fill what the others look back at.
    long firstStep() const { return m_firstStep; }
    bool reachesOutside() const { return m_reachesOutside; }

private:
    /// The steps of a graph, in the axes of a strip.
    struct Tap
    {
        unsigned node;
        long slab, row, column;
    };
    struct Size
    {
        unsigned long cols, rows;
    };
    Size stripFor(unsigned long cols, unsigned long rows) const;

    std::vector<std::vector<Tap>> m_taps;
    std::vector<Reach> m_nodes;
    std::size_t m_mostTaps = 0;
    long m_firstStep = 0;
    bool m_reachesOutside;
    bool m_isVolume;
    std::size_t m_voxelSize;
};

} // namespace qel::morphology
