#pragma once

#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Algorithms.h"

#include <qel/linear_filtering/FiniteImpulseResponseFilter2D.h>
#include <qel/linear_filtering/FiniteImpulseResponseFilter3D.h>

namespace qel::test {

/// A kernel of either filter; in 2D the plans are left out.
struct Point
{
    long x, y, z;
    double weight;
};
using Points = std::vector<Point>;

/// The column, row or plan that a mirrored coordinate stands for.
inline unsigned long mirrored(long coordinate, unsigned long size)
{
    long const period = 2 * long(size);
    long const phase = ((coordinate % period) + period) % period;
    return static_cast<unsigned long>(phase < long(size) ? phase : period - 1 - phase);
}

/// The filter as it is defined: in `Work`, in the order of the points.
template <class Work, class Out, class In>
Picture<Out> filtered(Picture<In> const& in, Points const& points, bool isFlat)
{
    Picture<Out> out(in.shape);
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        Work sum = 0;
        for (Point const& point : points) {
            In const voxel =
                in.at(mirrored(long(c) + point.x, in.shape.columns), mirrored(long(r) + point.y, in.shape.rows),
                      mirrored(long(p) + (isFlat ? 0 : point.z), in.shape.plans), t, s);
            Work const product = static_cast<Work>(point.weight) * helper::convertVoxel<Work>(voxel);
            sum = sum + product;
        }
        out.at(c, r, p, t, s) = helper::convertVoxel<Out>(sum);
    });
    return out;
}

/// What an output of this type is computed in.
template <class Out> using WorkOf = std::conditional_t<sizeof(Out) <= 2 || std::is_same_v<Out, float>, float, double>;

template <class Filter>
inline constexpr bool isFlat = std::is_same_v<Filter, linear_filtering::FiniteImpulseResponseFilter2D>;

template <class Filter> void setKernel(Filter& filter, Points const& points)
{
    if constexpr (isFlat<Filter>) {
        kernel::Kernel2D kernel;
        for (Point const& point : points)
            kernel.addPoint(point.x, point.y, point.weight);
        filter.kernel2D = kernel;
    } else {
        kernel::Kernel3D kernel;
        for (Point const& point : points)
            kernel.addPoint(point.x, point.y, point.z, point.weight);
        filter.kernel3D = kernel;
    }
}

} // namespace qel::test
