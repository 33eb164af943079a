#pragma once

#include <cstddef>
#include <ostream>
#include <utility>
#include <vector>

namespace qel::test {

/// Sizes of an image along the five axes, in the order of Components.
struct Shape
{
    unsigned long columns = 1;
    unsigned long rows = 1;
    unsigned long plans = 1;
    unsigned long timeSeries = 1;
    unsigned long spectralSeries = 1;

    unsigned long count() const { return columns * rows * plans * timeSeries * spectralSeries; }
    bool operator==(Shape const&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, Shape const& shape)
{
    return stream << shape.columns << 'x' << shape.rows << 'x' << shape.plans << 'x' << shape.timeSeries << 'x'
                  << shape.spectralSeries;
}

/// An image as plain as it can be: a shape, and the voxels with columns varying fastest, then rows, plans, time
/// series, spectral series.
template <class T> struct Picture
{
    using Voxel = T;

    Shape shape;
    std::vector<T> voxels;

    Picture()
        : shape{0, 0, 0, 0, 0}
    {}
    explicit Picture(Shape const& itsShape, T fill = T())
        : shape(itsShape)
        , voxels(itsShape.count(), fill)
    {}
    Picture(Shape const& itsShape, std::vector<T> itsVoxels)
        : shape(itsShape)
        , voxels(std::move(itsVoxels))
    {}

    std::size_t index(unsigned long column, unsigned long row = 0, unsigned long plan = 0, unsigned long time = 0,
                      unsigned long spectral = 0) const
    {
        return (((spectral * shape.timeSeries + time) * shape.plans + plan) * shape.rows + row) * shape.columns +
               column;
    }
    T& at(unsigned long column, unsigned long row = 0, unsigned long plan = 0, unsigned long time = 0,
          unsigned long spectral = 0)
    {
        return voxels.at(index(column, row, plan, time, spectral));
    }
    T const& at(unsigned long column, unsigned long row = 0, unsigned long plan = 0, unsigned long time = 0,
                unsigned long spectral = 0) const
    {
        return voxels.at(index(column, row, plan, time, spectral));
    }
};

/// Calls visit(column, row, plan, time, spectral) for each voxel, in the order of storage.
template <class Visit> void forEachVoxel(Shape const& shape, Visit&& visit)
{
    for (unsigned long s = 0; s < shape.spectralSeries; ++s)
        for (unsigned long t = 0; t < shape.timeSeries; ++t)
            for (unsigned long p = 0; p < shape.plans; ++p)
                for (unsigned long r = 0; r < shape.rows; ++r)
                    for (unsigned long c = 0; c < shape.columns; ++c)
                        visit(c, r, p, t, s);
}

} // namespace qel::test
