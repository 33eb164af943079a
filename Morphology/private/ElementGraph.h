#pragma once

#include <qel/kernel/Offset3D.h>

#include <array>
#include <compare>
#include <vector>

namespace qel::morphology {

/// A structuring element, taken apart into steps that are cheap to compute.
///
/// Node 0 is the image. Each further node is the extremum of a few earlier ones, shifted: at p of `node(p + offset)`
/// for each of its taps. The last node is the image under the whole element. Extrema are associative and idempotent, so
/// any way to cover the element with taps gives the same voxels; there are few where many voxels share a partial
/// extremum.
struct ElementGraph
{
    /// A node as it is seen from a voxel.
    struct Tap
    {
        unsigned node;
        std::array<long, 3> offset; // x, y, z

        Tap shifted(int axis, long distance) const
        {
            Tap tap = *this;
            tap.offset[static_cast<unsigned>(axis)] += distance;
            return tap;
        }
    };

    std::vector<std::vector<Tap>> nodes{{}};
    /// Whether the element also has voxels that lie outside the image from everywhere in it: they are left out of the
    /// graph, and what stands outside competes with each voxel once.
    bool reachesOutside = false;

    bool isImage() const { return nodes.size() == 1; }
    Tap add(std::vector<Tap> taps);
    /// How many voxels are read and written for one voxel.
    unsigned long cost() const;

    struct Reach
    {
        std::array<long, 3> lowest{0, 0, 0};
        std::array<long, 3> highest{0, 0, 0};
    };
    /// Which voxels around the one that is computed are seen of each node.
    std::vector<Reach> reaches() const;

    /// The steps of the elements below, on top of a node.
    Tap window(Tap from, int axis, unsigned long length);                   // voxels 0 to length - 1 along an axis
    Tap box(Tap from, unsigned long radius, int axes);                      // of 2 or 3 axes
    Tap diamond(Tap from, unsigned long radius, int axes);                  // at most so many steps along the axes
    Tap cuboctahedron(Tap from, unsigned long radius);                      // the 18-neighbourhood, repeated
    Tap ball(Tap from, unsigned long radius, int axes);                     // exact: no further from the centre
    Tap collection(Tap from, std::vector<kernel::Offset3D> const& offsets); // any voxels, at least one
    Tap line(Tap from, std::vector<kernel::Offset3D> const& offsets);       // likewise, of a digital line in its order

    /// Ends a graph: the last node becomes what `top` is.
    void finish(Tap const& top);

private:
    /// Adjacent voxels along the first of three axes.
    struct Run
    {
        long slice, row, begin;
        unsigned long length;
        auto operator<=>(Run const&) const = default;
    };
    using Order = std::array<int, 3>; // the axes of a run, of the rows in a slice, and of the slices

    static std::vector<Run> runsOf(std::vector<kernel::Offset3D> const& offsets, Order const& order);
    Tap runs(Tap from, std::vector<Run> const& sorted, Order const& order);
    Tap halves(Tap from, std::vector<kernel::Offset3D> const& offsets);
};

} // namespace qel::morphology
