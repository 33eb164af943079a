#include "Geometry/private/CenterLineProcessor.h"

#include "Core/private/AbstractPrivateImplementation.h"

#include <qel/ImageModel.h>
#include <qel/geometry/LineSet3D.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace qel::geometry {

ImageGraph::ImageGraph(unsigned long const* size, double const* spacing)
    : m_bits(size[0] * size[1] * size[2])
{
    unsigned int direction = 0;
    for (int plan = -1; plan <= 1; ++plan)
        for (int row = -1; row <= 1; ++row)
            for (int column = -1; column <= 1; ++column) {
                if (column == 0 && row == 0 && plan == 0)
                    continue;
                long const columns = static_cast<long>(size[0]);
                long const rows = static_cast<long>(size[1]);
                m_offsets[direction] = (plan * rows + row) * columns + column;
                double const x = column * spacing[0];
                double const y = row * spacing[1];
                double const z = plan * spacing[2];
                m_lengths[direction] = static_cast<float>(std::sqrt(x * x + y * y + z * z));
                ++direction;
            }
}

CenterLineVolume::CenterLineVolume(ImageModel const& image)
    : size{image.getNumOf(COLUMNS), image.getNumOf(ROWS), image.getNumOf(PLANS)}
    , spacing{image.getSpacingOf(COLUMNS), image.getSpacingOf(ROWS), image.getSpacingOf(PLANS)}
    , origin{image.getOriginOf(COLUMNS), image.getOriginOf(ROWS), image.getOriginOf(PLANS)}
    , graph(size, spacing)
    , geodesic(size[0] * size[1] * size[2])
{}

math::Vector3<double> CenterLineVolume::positionOf(std::size_t voxel) const
{
    std::size_t const rows = voxel / size[0];
    return {static_cast<double>(voxel % size[0]) * spacing[0] + origin[0],
            static_cast<double>(rows % size[1]) * spacing[1] + origin[1],
            static_cast<double>(rows / size[1]) * spacing[2] + origin[2]};
}

void ImageGraph::connect(std::size_t voxel, unsigned int direction)
{
    m_bits[voxel] |= std::uint32_t(1) << direction;
    m_bits[neighbor(voxel, direction)] = std::uint32_t(1) << opposite(direction);
}

/// By the distance of the farthest voxel. Of equal ones that comes last which a search would settle last.
struct CenterLineProcessor::Nearer
{
    bool operator()(Piece const& a, Piece const& b) const
    {
        return a.distance != b.distance ? a.distance < b.distance : processor.leavesLater(b.farthest, a.farthest);
    }
    CenterLineProcessor const& processor;
};

CenterLineProcessor::CenterLineProcessor(CenterLineVolume& volume, CenterLineSettings const& settings,
                                         algorithms::AbstractPrivateImplementation const& running)
    : m_volume(volume)
    , m_graph(volume.graph)
    , m_edges(volume.edges)
    , m_settings(settings)
    , m_running(running)
{}

void CenterLineProcessor::run(std::size_t seed)
{
    if (!growTree(seed) || !findLines(seed))
        return; // cancelled
    clearTree(seed);
    if (!smooth())
        return;
    unsigned long const first = m_volume.coords.size();
    m_volume.coords.insert(m_volume.coords.end(), m_coords.begin(), m_coords.end());
    for (unsigned long index : m_indices)
        m_volume.indices.push_back(index == LineSet3D::stop ? index : first + index);
}

/// Prim's algorithm. False where the run was cancelled.
bool CenterLineProcessor::growTree(std::size_t seed)
{
    offerEdges(seed);
    for (unsigned long taken = 0; !m_edges.empty(); ++taken) {
        if (taken % 65536 == 0 && m_running.isCancelled())
            return false;
        std::uint64_t& edge = m_edges.topContent();
        std::size_t const voxel = edge / 32;
        unsigned int direction = edge % 32;
        float const level = m_volume.map[voxel];
        bool const isBundle = m_edges.topWeight() == level;
        if (isBundle)
            while (direction < ImageGraph::numOfNeighbors && !leadsDown(voxel, direction, level))
                ++direction;
        bool const isUsedUp = direction == ImageGraph::numOfNeighbors;
        if (isBundle && !isUsedUp)
            ++(edge = voxel * 32 + direction);
        else
            m_edges.pop();
        if (isUsedUp)
            continue;
        std::size_t const target = m_graph.neighbor(voxel, direction);
        if (m_graph.isVisited(target))
            continue;
        m_graph.connect(voxel, direction);
        offerEdges(target);
    }
    return true;
}

/// Whether an edge leads to a voxel without edges that does not lie deeper.
bool CenterLineProcessor::leadsDown(std::size_t voxel, unsigned int direction, float level) const
{
    std::size_t const target = m_graph.neighbor(voxel, direction);
    float const value = m_volume.map[target];
    return value > 0 && value <= level && !m_graph.isVisited(target);
}

/// Lets the edges to neighbours wait. Where one of that weight or of a greater one waits already, another would never
/// be taken.
void CenterLineProcessor::offerEdges(std::size_t voxel)
{
    float const level = m_volume.map[voxel];
    m_volume.geodesic[voxel] = std::numeric_limits<float>::infinity();
    unsigned int firstDown = ImageGraph::numOfNeighbors;
    for (unsigned int direction = ImageGraph::numOfNeighbors; direction-- > 0;) {
        std::size_t const target = m_graph.neighbor(voxel, direction);
        float const value = m_volume.map[target];
        float& best = m_volume.geodesic[target];
        if (value > 0 && value <= level && best < level) {
            best = level;
            firstDown = direction;
        }
    }
    for (unsigned int direction = 0; direction < ImageGraph::numOfNeighbors; ++direction) {
        std::size_t const target = m_graph.neighbor(voxel, direction);
        float const value = m_volume.map[target];
        if (value > level && m_volume.geodesic[target] < value) {
            m_volume.geodesic[target] = value;
            m_edges.push(value, voxel * 32 + direction);
        }
    }
    if (firstDown < ImageGraph::numOfNeighbors)
        m_edges.push(level, voxel * 32 + firstDown);
}

/// False where the run was cancelled.
bool CenterLineProcessor::findLines(std::size_t seed)
{
    auto enough = [&, b = 0U]() mutable { return !m_settings.autoMode && b++ == m_settings.numberOfBranches; };
    if (enough())
        return true;
    Piece const longest = longestWay(seed);
    if (!(longest.distance > 0))
        return !m_running.isCancelled();
    addLine(wayToSource(longest.farthest));
    while (!enough() && !m_pieces.empty()) {
        if (m_running.isCancelled())
            return false;
        Piece const piece = m_pieces.front();
        std::vector<std::size_t> const way = wayToSource(piece.farthest);
        bool const isLong = piece.distance > m_volume.map[way.back()] * m_settings.newBranchSensibility;
        if (!(piece.distance > 0) || (m_settings.autoMode && !isLong))
            break;
        std::pop_heap(m_pieces.begin(), m_pieces.end(), Nearer{*this});
        m_pieces.pop_back();
        addLine(way);
    }
    return true;
}

/// From anywhere to the farthest voxel, and from there to the one farthest from it, until the way hardly grows. Without
/// a distance where there is no way, or the run was cancelled.
CenterLineProcessor::Piece CenterLineProcessor::longestWay(std::size_t seed)
{
    std::size_t source = seed;
    float previous = -1;
    for (int sweeps = 1; !m_running.isCancelled(); ++sweeps) {
        Piece const piece = walk(source, m_graph.edgesOf(source));
        double const change = std::fabs(static_cast<double>(previous) - piece.distance) / previous;
        if (!(piece.distance > 0) || sweeps > 10 || (previous != -1 && change < 0.01))
            return piece;
        previous = piece.distance;
        source = piece.farthest;
    }
    return {seed, 0};
}

/// Measures the distances from a source, for what hangs on it in some directions.
CenterLineProcessor::Piece CenterLineProcessor::walk(std::size_t source, std::uint32_t directions)
{
    Piece piece{source, 0};
    m_graph.makeSource(source);
    m_volume.geodesic[source] = 0;
    std::size_t voxel = source;
    for (;;) {
        float const distance = m_volume.geodesic[voxel];
        for (; directions; directions &= directions - 1) {
            unsigned int const direction = static_cast<unsigned int>(std::countr_zero(directions));
            std::size_t const next = m_graph.neighbor(voxel, direction);
            m_volume.geodesic[next] = distance + m_graph.lengthOf(direction);
            m_graph.setTowardsSource(next, ImageGraph::opposite(direction));
            m_stack.push_back(next);
        }
        if (m_stack.empty())
            return piece;
        voxel = m_stack.back();
        m_stack.pop_back();
        float const reached = m_volume.geodesic[voxel];
        if (reached > piece.distance || (reached == piece.distance && leavesLater(voxel, piece.farthest)))
            piece = {voxel, reached};
        directions = m_graph.edgesOf(voxel) & ~(std::uint32_t(1) << m_graph.towardsSource(voxel));
    }
}

/// Which of two voxels at the same distance a search from the sources would settle later, if what came first left its
/// heap first: that whose predecessor was settled later. Sources come in the order of the image.
bool CenterLineProcessor::leavesLater(std::size_t a, std::size_t b) const
{
    while (m_volume.geodesic[a] == m_volume.geodesic[b]) {
        if (m_graph.isSource(a) || m_graph.isSource(b))
            return m_graph.isSource(b) && (!m_graph.isSource(a) || a > b);
        std::size_t const beforeA = m_graph.neighbor(a, m_graph.towardsSource(a));
        std::size_t const beforeB = m_graph.neighbor(b, m_graph.towardsSource(b));
        if (beforeA == beforeB) // directions rise with the linear index
            return a > b;
        a = beforeA;
        b = beforeB;
    }
    return m_volume.geodesic[a] > m_volume.geodesic[b];
}

/// The voxels from here to the source, with both ends.
std::vector<std::size_t> CenterLineProcessor::wayToSource(std::size_t voxel) const
{
    std::vector<std::size_t> way{voxel};
    while (!m_graph.isSource(way.back()))
        way.push_back(m_graph.neighbor(way.back(), m_graph.towardsSource(way.back())));
    return way;
}

/// Adds a line, and the pieces of the tree that hang on it. The last voxel of a branch has its vertex and its pieces
/// already, by the line that it lies on.
void CenterLineProcessor::addLine(std::vector<std::size_t> const& way)
{
    std::size_t numOfNew = 0;
    for (std::size_t voxel : way) {
        auto const [vertex, isNew] = m_vertexOf.try_emplace(voxel, m_coords.size());
        m_indices.push_back(vertex->second);
        if (!isNew)
            continue;
        ++numOfNew;
        m_coords.push_back(m_volume.positionOf(voxel));
        m_volume.centerLine[voxel] = 1;
        m_graph.makeSource(voxel);
        m_volume.geodesic[voxel] = 0;
    }
    m_indices.push_back(LineSet3D::stop);
    for (std::size_t i = 0; i < numOfNew; ++i)
        for (std::uint32_t edges = m_graph.edgesOf(way[i]); edges; edges &= edges - 1) {
            std::size_t const next = m_graph.neighbor(way[i], static_cast<unsigned int>(std::countr_zero(edges)));
            if (m_graph.isSource(next))
                continue;
            m_pieces.push_back(walk(way[i], edges & (~edges + 1)));
            std::push_heap(m_pieces.begin(), m_pieces.end(), Nearer{*this});
        }
}

/// Whether two vertices have the same coordinates. What is no number stays none.
static bool isSamePlace(math::Vector3<double> const& a, math::Vector3<double> const& b)
{
    for (unsigned int axis = 0; axis < 3; ++axis)
        if (a[axis] != b[axis] && !(std::isnan(a[axis]) && std::isnan(b[axis])))
            return false;
    return true;
}

/// Rounds that change nothing are not repeated. False where the run was cancelled.
bool CenterLineProcessor::smooth()
{
    std::vector<math::Vector3<double>> before;
    for (unsigned int round = 0; round < m_settings.smoothingIteration; ++round) {
        if (std::equal(before.begin(), before.end(), m_coords.begin(), m_coords.end(), isSamePlace))
            return true;
        if (m_running.isCancelled())
            return false;
        before = m_coords;
        // A run's ends have a separator, or nothing, beside them.
        for (std::size_t i = 1; i + 1 < m_indices.size(); ++i) {
            unsigned long const previous = m_indices[i - 1];
            unsigned long const current = m_indices[i];
            unsigned long const next = m_indices[i + 1];
            if (previous != LineSet3D::stop && current != LineSet3D::stop && next != LineSet3D::stop)
                m_coords[current] = (before[previous] + before[current] + before[next]) / 3.0;
        }
    }
    return true;
}

/// Leaves the buffers as they were, at the cost of this object alone.
void CenterLineProcessor::clearTree(std::size_t seed)
{
    m_stack.push_back(seed);
    while (!m_stack.empty()) {
        std::size_t const voxel = m_stack.back();
        m_stack.pop_back();
        for (std::uint32_t edges = m_graph.edgesOf(voxel); edges; edges &= edges - 1) {
            std::size_t const next = m_graph.neighbor(voxel, static_cast<unsigned int>(std::countr_zero(edges)));
            if (m_graph.isVisited(next))
                m_stack.push_back(next);
        }
        m_graph.clear(voxel);
        m_volume.geodesic[voxel] = 0;
    }
}

} // namespace qel::geometry
