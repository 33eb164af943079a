#pragma once

#include "Geometry/private/EdgeQueue.h"

#include <qel/math/Vector3.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <unordered_map>
#include <vector>

namespace qel {

class ImageModel;

namespace algorithms {
class AbstractPrivateImplementation;
}

namespace geometry {

/// Zeros, of which the machine gives memory only where they are written: objects are a small part of most volumes.
template <class T> class ZeroedBuffer
{
public:
    explicit ZeroedBuffer(std::size_t size)
        : m_data(static_cast<T*>(std::calloc(size, sizeof(T))))
    {
        if (size && !m_data)
            throw std::bad_alloc();
    }

    T& operator[](std::size_t index) { return m_data.get()[index]; }
    T const& operator[](std::size_t index) const { return m_data.get()[index]; }

private:
    struct Free
    {
        void operator()(T* data) const { std::free(data); }
    };
    std::unique_ptr<T, Free> m_data;
};

/// Objects as trees of voxels: each voxel has a bit for each of its 26 neighbours that it is tied to. In the bits above
/// stands the neighbour by which the way to the nearest source leads.
class ImageGraph
{
public:
    static constexpr unsigned int numOfNeighbors = 26;

    /// Neighbours are numbered plan by plan, row by row, column by column.
    static unsigned int opposite(unsigned int direction) { return numOfNeighbors - 1 - direction; }

    ImageGraph(unsigned long const* size, double const* spacing);

    /// Whether the voxel has an edge.
    bool isVisited(std::size_t voxel) const { return m_bits[voxel] != 0; }
    std::uint32_t edgesOf(std::size_t voxel) const { return m_bits[voxel] & allEdges; }
    /// Ties a neighbour without edges to a voxel.
    void connect(std::size_t voxel, unsigned int direction);
    void clear(std::size_t voxel) { m_bits[voxel] = 0; }

    /// A voxel is a source, or has a neighbour by which the way to the source leads.
    bool isSource(std::size_t voxel) const { return towardsSource(voxel) == none; }
    void makeSource(std::size_t voxel) { setTowardsSource(voxel, none); }
    unsigned int towardsSource(std::size_t voxel) const { return m_bits[voxel] >> numOfNeighbors; }
    void setTowardsSource(std::size_t voxel, unsigned int direction)
    {
        m_bits[voxel] = edgesOf(voxel) | direction << numOfNeighbors;
    }

    std::size_t neighbor(std::size_t voxel, unsigned int direction) const
    {
        return voxel + static_cast<std::size_t>(m_offsets[direction]);
    }
    float lengthOf(unsigned int direction) const { return m_lengths[direction]; }

private:
    static constexpr std::uint32_t allEdges = (std::uint32_t(1) << numOfNeighbors) - 1;
    static constexpr unsigned int none = 31;

    ZeroedBuffer<std::uint32_t> m_bits;
    long m_offsets[numOfNeighbors];
    float m_lengths[numOfNeighbors];
};

/// What all objects of one image share.
struct CenterLineVolume
{
    explicit CenterLineVolume(ImageModel const& image);

    math::Vector3<double> positionOf(std::size_t voxel) const;

    unsigned long size[3];
    double spacing[3];
    double origin[3];

    /// The smoothed distance map, 0 outside the objects and in the outer layer.
    float const* map = nullptr;
    /// Takes 1 on the lines of all objects.
    unsigned char* centerLine = nullptr;

    ImageGraph graph;
    /// The edges that wait while a tree grows. An edge's weight is the greater value of its two voxels. So those from a
    /// voxel to all that lie no deeper have one weight, and leave one after the other: they wait as one entry, a
    /// bundle, with the first of them that was not taken yet. An edge to a deeper voxel waits alone. The content is the
    /// voxel times 32, and the direction.
    EdgeQueue edges;
    /// Distances along the tree. While it grows: the weight of the best edge to a voxel that waits.
    ZeroedBuffer<float> geodesic;

    std::vector<math::Vector3<double>> coords;
    std::vector<unsigned long> indices;
};

struct CenterLineSettings
{
    bool autoMode;
    unsigned int numberOfBranches;
    double newBranchSensibility;
    unsigned int smoothingIteration;
};

/// Finds the lines of one object.
///
/// A voxel's distance from lines is that along the tree, in which there is one way. So no search is needed to find it:
/// a walk through the tree tells. And a new branch changes distances only in the part of the tree that it runs through:
/// what it leaves of that part is walked again, and no other voxel.
class CenterLineProcessor
{
public:
    /// `running` tells whether the run was cancelled.
    CenterLineProcessor(CenterLineVolume& volume, CenterLineSettings const& settings,
                        algorithms::AbstractPrivateImplementation const& running);

    /// Adds the lines of the object of this voxel to the volume's; none where the run is cancelled.
    void run(std::size_t seed);

private:
    /// The part of the tree that hangs on a voxel of a line, with its farthest voxel.
    struct Piece
    {
        std::size_t farthest;
        float distance;
    };

    struct Nearer;

    bool growTree(std::size_t seed);
    bool leadsDown(std::size_t voxel, unsigned int direction, float level) const;
    void offerEdges(std::size_t voxel);
    bool findLines(std::size_t seed);
    Piece longestWay(std::size_t seed);
    Piece walk(std::size_t source, std::uint32_t directions);
    bool leavesLater(std::size_t a, std::size_t b) const;
    std::vector<std::size_t> wayToSource(std::size_t voxel) const;
    void addLine(std::vector<std::size_t> const& way);
    bool smooth();
    void clearTree(std::size_t seed);

    CenterLineVolume& m_volume;
    ImageGraph& m_graph;
    EdgeQueue& m_edges;
    CenterLineSettings const m_settings;
    algorithms::AbstractPrivateImplementation const& m_running;
    std::vector<Piece> m_pieces; // a heap
    std::vector<std::size_t> m_stack;

    // The object's lines, and where its line voxels have their vertices.
    std::vector<math::Vector3<double>> m_coords;
    std::vector<unsigned long> m_indices;
    std::unordered_map<std::size_t, unsigned long> m_vertexOf;
};

} // namespace geometry
} // namespace qel
