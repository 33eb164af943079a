#pragma once

#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Algorithms.h"

#include <qel/filtering/smoothing/BoxFilter2D.h>
#include <qel/filtering/smoothing/BoxFilter3D.h>

namespace qel::test {

/// The column, row or plan that a mirrored coordinate stands for: step by step, edge repeated.
inline long mirrored(long coordinate, unsigned long size)
{
    long const last = static_cast<long>(size) - 1;
    while (coordinate < 0 || coordinate > last)
        coordinate = coordinate < 0 ? -1 - coordinate : 2 * last + 1 - coordinate;
    return coordinate;
}

struct BoxSides
{
    unsigned int columns, rows, plans = 1;
    double area() const { return double(columns) * rows * plans; }
};

/// The sum of each box, voxel by voxel, in long double: exact for all that the tests compare exactly.
template <class T> Picture<long double> boxSums(Picture<T> const& in, BoxSides const& box)
{
    Picture<long double> out(in.shape);
    auto const before = [](unsigned int side) { return long(side / 2); };
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        long double sum = 0;
        for (long z = 0; z < long(box.plans); ++z)
            for (long y = 0; y < long(box.rows); ++y)
                for (long x = 0; x < long(box.columns); ++x)
                    sum += in.at(mirrored(long(c) + x - before(box.columns), in.shape.columns),
                                 mirrored(long(r) + y - before(box.rows), in.shape.rows),
                                 mirrored(long(p) + z - before(box.plans), in.shape.plans), t, s);
        out.at(c, r, p, t, s) = sum;
    });
    return out;
}

template <class Out> Picture<Out> sumsAs(Picture<long double> const& sums)
{
    Picture<Out> out(sums.shape);
    for (std::size_t i = 0; i < out.voxels.size(); ++i)
        out.voxels[i] = static_cast<Out>(sums.voxels[i]);
    return out;
}

template <class Out> Picture<Out> meansAs(Picture<long double> const& sums, BoxSides const& box)
{
    Picture<Out> out(sums.shape);
    for (std::size_t i = 0; i < out.voxels.size(); ++i) {
        // Sums are whole numbers, or eighths: the quotient in double, once.
        double const mean = double(sums.voxels[i]) / box.area();
        if constexpr (std::is_floating_point_v<Out>)
            out.voxels[i] = static_cast<Out>(mean);
        else
            out.voxels[i] = static_cast<Out>(static_cast<long double>(std::trunc(mean)));
    }
    return out;
}

/// Either filter; in 2D the side along plans is left out.
template <class Box> void setSides(Box& box, BoxSides const& sides)
{
    if constexpr (std::is_same_v<Box, filtering::smoothing::BoxFilter2D>)
        box.boxSize = math::Vector2<unsigned int>(sides.columns, sides.rows);
    else
        box.boxSize = math::Vector3<unsigned int>(sides.columns, sides.rows, sides.plans);
}

} // namespace qel::test
