#pragma once

#include "Core/private/Access/IteratorNeighborhood.h"
#include "Morphology/private/euclidianPropagation.h"

#include <tbb/blocked_range.h> // tbb::split

#include <cmath>
#include <iterator>
#include <limits>
#include <vector>

namespace qel::morphology {

/// The 26 ways from a voxel to half-way to a neighbour, in the order of the voxels of a cube; the centre stands at 13.
struct HalfSteps
{
    double step[27][3];
    float length[27];

    explicit HalfSteps(Lattice const& lattice);
};

// Rows of marks: 1 in the region, 0 outside.

/// Voxels of value 0 are outside, or the others if `isOutside`.
template <class T>
void markRegion(T const* __restrict row, std::size_t voxels, bool isOutside, unsigned char* __restrict marks)
{
    unsigned char const flip = isOutside;
    for (std::size_t x = 0; x < voxels; ++x)
        marks[x] = static_cast<unsigned char>((row[x] != 0) ^ flip);
}

/// Nine rows of marks around a row, each from one column before it to one after it: where all 27 marks are set.
/// `columns` has room for two more voxels.
void markInterior(unsigned char const* const (&rows)[9], std::size_t voxels, unsigned char* columns,
                  unsigned char* interior);

/// Finds the boundary voxels of a region, the points half-way to what lies outside, and the first values of the map.
template <class T> class InitDistanceMapScalar
{
public:
    /// In the order of the voxels where blocks are cut along one axis alone.
    std::vector<std::vector<InterfacePoint>> parts;

    InitDistanceMapScalar(Lattice const& lattice, bool isOutside, float* map)
        : parts(1)
        , m_lattice(lattice)
        , m_halfSteps(lattice)
        , m_isOutside(isOutside)
        , m_map(map)
    {}
    InitDistanceMapScalar(InitDistanceMapScalar& other, tbb::split)
        : InitDistanceMapScalar(other.m_lattice, other.m_isOutside, other.m_map)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        access::IteratorNeighborhood3D_26<typename Filter::InputView, 1> in(filter.getInputView());
        std::size_t voxels = 0;
        std::vector<unsigned char> buffer;
        for (in.init(block); !in.atEnd(); in.nextRow()) {
            voxels = in.rowLength();
            std::size_t const width = voxels + 2;
            buffer.resize(11 * width);
            unsigned char const* marks[9];
            for (int k = 0; k < 9; ++k) {
                unsigned char* const row = buffer.data() + static_cast<std::size_t>(k) * width;
                markRegion(in.rowAt(k % 3 - 1, k / 3 - 1) - 1, width, m_isOutside, row);
                marks[k] = row;
            }
            unsigned char* const interior = buffer.data() + 10 * width;
            markInterior(marks, voxels, buffer.data() + 9 * width, interior);
            access::RowPosition const position = in.rowPosition();
            start(marks, interior, voxels,
                  {static_cast<unsigned long>(position.column), static_cast<unsigned long>(position.row),
                   static_cast<unsigned long>(position.plan)});
        }
    }

    void join(InitDistanceMapScalar& right)
    {
        parts.insert(parts.end(), std::make_move_iterator(right.parts.begin()),
                     std::make_move_iterator(right.parts.end()));
    }

    void finalize() {}

private:
    struct Place
    {
        unsigned long column, row, plan;
    };

    void start(unsigned char const* const (&marks)[9], unsigned char const* interior, std::size_t voxels, Place place)
    {
        float* const map = m_map + m_lattice.indexOf(place.column, place.row, place.plan);
        for (std::size_t x = 0; x < voxels; ++x) {
            map[x] = marks[4][x + 1] ? std::numeric_limits<float>::max() : 0.0f;
            if (marks[4][x + 1] && !interior[x])
                map[x] = addNearest(marks, x, {place.column + x, place.row, place.plan});
        }
    }

    /// All points half-way to the nearest neighbours outside; gives their distance.
    float addNearest(unsigned char const* const (&marks)[9], std::size_t x, Place place)
    {
        std::vector<InterfacePoint>& points = parts.back();
        float nearest = std::numeric_limits<float>::max();
        std::size_t const before = points.size();
        for (std::size_t k = 0; k < 27; ++k) {
            if (k == 13 || marks[k / 3][x + k % 3])
                continue;
            float const distance = m_halfSteps.length[k];
            if (nearest > distance) {
                points.resize(before);
                nearest = distance;
            }
            if (nearest == distance)
                points.push_back({m_lattice.indexOf(place.column, place.row, place.plan),
                                  distance,
                                  {at(0, place.column, k), at(1, place.row, k), at(2, place.plan, k)}});
        }
        return nearest;
    }

    float at(int axis, unsigned long position, std::size_t k) const
    {
        return static_cast<float>(static_cast<double>(position) * m_lattice.spacing[axis] + m_halfSteps.step[k][axis]);
    }

    Lattice m_lattice;
    HalfSteps m_halfSteps;
    bool m_isOutside;
    float* m_map;
};

} // namespace qel::morphology
