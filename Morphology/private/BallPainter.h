#pragma once

#include "Morphology/private/Lattice.h"

#include <tbb/task_group.h> // tbb::task_group_context

#include <cstdint>
#include <functional>
#include <vector>

namespace qel::morphology {

/// Paints balls around the voxels of an object, the largest first: each voxel keeps the diameter of the first ball that
/// covers it, and is not looked at again.
///
/// One bit of each voxel tells whether it still waits for its ball, so that a part of a row is one word. Cells of 64
/// columns, 8 rows and 8 plans count how many of their voxels wait: most balls find none, and are passed over.
class BallPainter
{
public:
    static constexpr unsigned long cellColumns = 64;
    static constexpr unsigned long cellRows = 8;
    static constexpr unsigned long cellPlans = 8;

    /// No voxel waits yet.
    explicit BallPainter(Lattice const& lattice);

    /// The voxels of a row that are not 0 wait for a ball. Callable from several threads for different plans of cells.
    template <class T> void addRow(T const* row, unsigned long y, unsigned long z)
    {
        for (unsigned long x = 0; x < m_lattice.size[0]; ++x)
            if (row[x] != 0) {
                wordOf(x, y, z) |= std::uint64_t(1) << x % cellColumns;
                ++m_waiting[cellOf(x, y, z)];
            }
    }

    /// `radii`: of the ball around each voxel. `thickness`: at first the diameters of the voxels' own balls; at the end
    /// of the largest ones that cover them. `onPlans` is told how many plans are done.
    void paint(float const* radii, float* thickness, tbb::task_group_context& context,
               std::function<void(unsigned long)> const& onPlans);

private:
    struct Slab // of cells
    {
        unsigned long begin, end;
    };
    template <class Index> struct Ball
    {
        float radius;
        Index voxel;
    };

    template <class Index>
    void paintAs(float const* radii, float* thickness, tbb::task_group_context& context,
                 std::function<void(unsigned long)> const& onPlans);
    template <class Index> std::vector<Ball<Index>> ballsOf(float const* radii) const;
    template <class Index>
    void paintSlab(Slab const& slab, std::vector<Ball<Index>> const& balls, float* thickness,
                   tbb::task_group_context& context);
    void paintBall(double radius, long x, long y, long z, Slab const& slab, float* thickness);
    void paintInCell(double radius, long x, long y, long z, unsigned long const (&cell)[3], float* thickness);

    std::uint64_t& wordOf(unsigned long x, unsigned long y, unsigned long z)
    {
        return m_bits[(z * m_lattice.size[1] + y) * m_cells[0] + x / cellColumns];
    }
    unsigned long cellOf(unsigned long x, unsigned long y, unsigned long z) const
    {
        return (z / cellPlans * m_cells[1] + y / cellRows) * m_cells[0] + x / cellColumns;
    }

    Lattice m_lattice;
    unsigned long m_cells[3];
    std::vector<std::uint64_t> m_bits;
    std::vector<unsigned int> m_waiting; // voxels of each cell
};

} // namespace qel::morphology
