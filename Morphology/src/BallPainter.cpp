#include "Morphology/private/BallPainter.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_sort.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace qel::morphology {

namespace {

/// Towards zero, and `most` in magnitude at the most; what is no number is `most`.
long wholePart(double value, long most)
{
    double const limit = static_cast<double>(most);
    return value < limit ? static_cast<long>(std::max(value, -limit)) : most;
}

/// The steps along an axis that a ball is painted at: from `first` to before `end`.
struct Steps
{
    long first, end;
};

Steps stepsOf(double radius, double spacing, long position, unsigned long size)
{
    long const reach = wholePart(radius / spacing, static_cast<long>(size)) + 1;
    return {std::max(-reach, -position), std::min(reach, static_cast<long>(size) - position)};
}

/// The bits `first` to `last` of a word, counted from the voxel at its begin.
std::uint64_t bitsBetween(long first, long last)
{
    std::uint64_t const from = ~std::uint64_t(0) << std::max(first, 0l);
    std::uint64_t const to = ~std::uint64_t(0) >> (63 - std::min(last, 63l));
    return from & to;
}

double squared(double value) { return value * value; }

/// Whether a ball is painted at a step from its centre, wherever the image ends.
bool isPaintedAt(Lattice const& lattice, double radius, long const (&step)[3])
{
    for (int axis = 1; axis < 3; ++axis) {
        long const reach = wholePart(radius / lattice.spacing[axis], std::numeric_limits<int>::max()) + 1;
        if (step[axis] < -reach || step[axis] >= reach)
            return false;
    }
    double const rest = (squared(radius) - (squared(static_cast<double>(step[1])) * squared(lattice.spacing[1]) +
                                            squared(static_cast<double>(step[2])) * squared(lattice.spacing[2]))) /
                        squared(lattice.spacing[0]);
    return rest >= 0 && std::abs(step[0]) <= wholePart(std::sqrt(rest), std::numeric_limits<int>::max());
}

/// Finds the balls that need not be painted, since the ball of a neighbour covers all that they do.
class Neighbours
{
public:
    explicit Neighbours(Lattice const& lattice)
        : m_lattice(lattice)
        , m_leastSpacing(std::min({lattice.spacing[0], lattice.spacing[1], lattice.spacing[2]}))
    {
        for (int k = 0; k < 27; ++k) {
            Neighbour neighbour{{k % 3 - 1, k / 3 % 3 - 1, k / 9 - 1}, 0, 0};
            for (int axis = 0; axis < 3; ++axis)
                neighbour.distance += squared(static_cast<double>(neighbour.step[axis]) * lattice.spacing[axis]);
            neighbour.distance = std::sqrt(neighbour.distance);
            neighbour.offset = (neighbour.step[2] * static_cast<long>(lattice.size[1]) + neighbour.step[1]) *
                                   static_cast<long>(lattice.size[0]) +
                               neighbour.step[0];
            if (k != 13)
                m_neighbours.push_back(neighbour);
        }
    }

    /// `radius`: that of the voxel, in a volume of radii.
    bool coverBallOf(long const (&voxel)[3], float const* radius) const
    {
        for (Neighbour const& neighbour : m_neighbours) {
            bool isInImage = true;
            for (int axis = 0; axis < 3; ++axis)
                isInImage = isInImage && voxel[axis] + neighbour.step[axis] >= 0 &&
                            voxel[axis] + neighbour.step[axis] < static_cast<long>(m_lattice.size[axis]);
            if (isInImage && covers(neighbour, radius[neighbour.offset], *radius))
                return true;
        }
        return false;
    }

private:
    struct Neighbour
    {
        long step[3];
        double distance;
        long offset; // in a volume
    };

    bool covers(Neighbour const& neighbour, double larger, double radius) const
    {
        // What is missing until the larger ball holds the other: nothing, or what rounding makes.
        double const missing = radius + neighbour.distance - larger;
        double const tolerance = 4e-7 * larger;
        if (missing < -tolerance)
            return true;
        if (!(missing <= tolerance))
            return false;
        // They touch, opposite to the neighbour. If the two surfaces part within less than half a voxel, at most one
        // voxel lies between them, and the painting itself tells whether both balls have it or one.
        double const parting = 2 * tolerance * radius * larger / neighbour.distance;
        if (!(parting < 0.16 * squared(m_leastSpacing)))
            return false;
        long pole[3], fromLarger[3];
        for (int axis = 0; axis < 3; ++axis) {
            double const towards =
                -static_cast<double>(neighbour.step[axis]) * m_lattice.spacing[axis] / neighbour.distance;
            pole[axis] = std::lround(radius * towards / m_lattice.spacing[axis]);
            fromLarger[axis] = pole[axis] - neighbour.step[axis];
        }
        return !isPaintedAt(m_lattice, radius, pole) || isPaintedAt(m_lattice, larger, fromLarger);
    }

    Lattice m_lattice;
    double m_leastSpacing;
    std::vector<Neighbour> m_neighbours;
};

} // namespace

BallPainter::BallPainter(Lattice const& lattice)
    : m_lattice(lattice)
    , m_cells{(lattice.size[0] + cellColumns - 1) / cellColumns, (lattice.size[1] + cellRows - 1) / cellRows,
              (lattice.size[2] + cellPlans - 1) / cellPlans}
    , m_bits(m_cells[0] * lattice.size[1] * lattice.size[2])
    , m_waiting(m_cells[0] * m_cells[1] * m_cells[2])
{}

void BallPainter::paint(float const* radii, float* thickness, tbb::task_group_context& context,
                        std::function<void(unsigned long)> const& onPlans)
{
    if (m_lattice.numOfVoxels() <= std::numeric_limits<std::uint32_t>::max())
        paintAs<std::uint32_t>(radii, thickness, context, onPlans);
    else
        paintAs<std::uint64_t>(radii, thickness, context, onPlans);
}

template <class Index>
void BallPainter::paintAs(float const* radii, float* thickness, tbb::task_group_context& context,
                          std::function<void(unsigned long)> const& onPlans)
{
    auto balls = ballsOf<Index>(radii);
    // Equal radii paint the same value in any order.
    tbb::parallel_sort(balls.begin(), balls.end(), [](auto const& a, auto const& b) { return a.radius > b.radius; });
    // Slabs share no voxel; each one looks at all balls.
    constexpr unsigned long slabs = 16;
    unsigned long const plansOfCells = std::max<unsigned long>((m_cells[2] + slabs - 1) / slabs, 1);
    tbb::parallel_for(
        tbb::blocked_range<unsigned long>(0, m_cells[2], plansOfCells),
        [&](tbb::blocked_range<unsigned long> const& range) {
            Slab const slab{range.begin(), range.end()};
            paintSlab<Index>(slab, balls, thickness, context);
            onPlans(std::min(slab.end * cellPlans, m_lattice.size[2]) - slab.begin * cellPlans);
        },
        tbb::simple_partitioner(), context);
}

template <class Index> std::vector<BallPainter::Ball<Index>> BallPainter::ballsOf(float const* radii) const
{
    std::vector<Ball<Index>> balls;
    Neighbours const neighbours(m_lattice);
    Index voxel = 0;
    for (unsigned long z = 0; z < m_lattice.size[2]; ++z)
        for (unsigned long y = 0; y < m_lattice.size[1]; ++y)
            for (unsigned long x = 0; x < m_lattice.size[0]; ++x, ++voxel)
                if (m_bits[(z * m_lattice.size[1] + y) * m_cells[0] + x / cellColumns] >> x % cellColumns & 1)
                    if (!neighbours.coverBallOf({static_cast<long>(x), static_cast<long>(y), static_cast<long>(z)},
                                                radii + voxel))
                        balls.push_back({radii[voxel], voxel});
    return balls;
}

template <class Index>
void BallPainter::paintSlab(Slab const& slab, std::vector<Ball<Index>> const& balls, float* thickness,
                            tbb::task_group_context& context)
{
    Index const columns = static_cast<Index>(m_lattice.size[0]);
    Index const plane = static_cast<Index>(columns * m_lattice.size[1]);
    long const first = static_cast<long>(slab.begin * cellPlans);
    long const end = static_cast<long>(slab.end * cellPlans);
    for (std::size_t i = 0; i < balls.size(); ++i) {
        if (i % 65536 == 0 && context.is_group_execution_cancelled())
            return;
        long const z = static_cast<long>(balls[i].voxel / plane);
        Steps const deep = stepsOf(balls[i].radius, m_lattice.spacing[2], z, m_lattice.size[2]);
        if (z + deep.end <= first || z + deep.first >= end)
            continue;
        Index const inPlane = balls[i].voxel % plane;
        paintBall(balls[i].radius, static_cast<long>(inPlane % columns), static_cast<long>(inPlane / columns), z, slab,
                  thickness);
    }
}

void BallPainter::paintBall(double radius, long x, long y, long z, Slab const& slab, float* thickness)
{
    // Cells that the ball's box touches.
    Steps const deep = stepsOf(radius, m_lattice.spacing[2], z, m_lattice.size[2]);
    Steps const down = stepsOf(radius, m_lattice.spacing[1], y, m_lattice.size[1]);
    long const reach = wholePart(radius / std::abs(m_lattice.spacing[0]), static_cast<long>(m_lattice.size[0])) + 1;
    if (deep.first >= deep.end || down.first >= down.end)
        return;
    auto const cellOfStep = [](long position, unsigned long side) {
        return static_cast<unsigned long>(position) / side;
    };
    unsigned long const firstX = cellOfStep(std::max(x - reach, 0l), cellColumns);
    unsigned long const lastX = std::min(cellOfStep(x + reach, cellColumns), m_cells[0] - 1);
    unsigned long const lastZ = std::min(cellOfStep(z + deep.end - 1, cellPlans), slab.end - 1);
    // Beyond this, no voxel of a cell is painted, however its root is rounded.
    double const farthest = squared(radius) * (1 + 1e-6);
    auto const gap = [](long position, unsigned long cell, unsigned long side, double spacing) {
        long const begin = static_cast<long>(cell * side);
        long const end = begin + static_cast<long>(side) - 1;
        return squared(static_cast<double>(std::max({begin - position, position - end, 0l})) * spacing);
    };
    for (unsigned long cz = std::max(cellOfStep(z + deep.first, cellPlans), slab.begin); cz <= lastZ; ++cz)
        for (unsigned long cy = cellOfStep(y + down.first, cellRows); cy <= cellOfStep(y + down.end - 1, cellRows);
             ++cy) {
            if (gap(z, cz, cellPlans, m_lattice.spacing[2]) + gap(y, cy, cellRows, m_lattice.spacing[1]) > farthest)
                continue;
            for (unsigned long cx = firstX; cx <= lastX; ++cx)
                if (m_waiting[(cz * m_cells[1] + cy) * m_cells[0] + cx] > 0)
                    paintInCell(radius, x, y, z, {cx, cy, cz}, thickness);
        }
}

void BallPainter::paintInCell(double radius, long x, long y, long z, unsigned long const (&cell)[3], float* thickness)
{
    Steps const deep = stepsOf(radius, m_lattice.spacing[2], z, m_lattice.size[2]);
    Steps const down = stepsOf(radius, m_lattice.spacing[1], y, m_lattice.size[1]);
    double const square = squared(radius);
    double const across = squared(m_lattice.spacing[0]);
    float const diameter = 2 * static_cast<float>(radius);
    unsigned int& waiting = m_waiting[(cell[2] * m_cells[1] + cell[1]) * m_cells[0] + cell[0]];
    long const cellX = static_cast<long>(cell[0] * cellColumns);
    long const cellY = static_cast<long>(cell[1] * cellRows);
    long const cellZ = static_cast<long>(cell[2] * cellPlans);
    long const firstY = std::max(down.first, cellY - y);
    long const endY = std::min(down.end, cellY + static_cast<long>(cellRows) - y);
    long const endZ = std::min(deep.end, cellZ + static_cast<long>(cellPlans) - z);
    for (long dz = std::max(deep.first, cellZ - z); dz < endZ; ++dz)
        for (long dy = firstY; dy < endY; ++dy) {
            std::uint64_t& word =
                wordOf(cell[0] * cellColumns, static_cast<unsigned long>(y + dy), static_cast<unsigned long>(z + dz));
            if (word == 0)
                continue;
            double const rest = (square - (static_cast<double>(dy * dy) * squared(m_lattice.spacing[1]) +
                                           static_cast<double>(dz * dz) * squared(m_lattice.spacing[2]))) /
                                across;
            if (!(rest >= 0))
                continue;
            long const width = wholePart(std::sqrt(rest), static_cast<long>(m_lattice.size[0]));
            long const first = x - width - cellX;
            long const last = x + width - cellX;
            if (first > 63 || last < 0)
                continue;
            std::uint64_t painted = word & bitsBetween(first, last);
            word &= ~painted;
            waiting -= static_cast<unsigned int>(std::popcount(painted));
            float* const row =
                thickness + m_lattice.indexOf(static_cast<unsigned long>(cellX), static_cast<unsigned long>(y + dy),
                                              static_cast<unsigned long>(z + dz));
            for (; painted != 0; painted &= painted - 1) {
                float& voxel = row[std::countr_zero(painted)];
                voxel = std::max(voxel, diameter);
            }
        }
}

} // namespace qel::morphology
