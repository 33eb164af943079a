#pragma once

#include "Core/tests/Support/FewerRounds.h"
#include "Morphology/tests/BinaryPicture.h"

#include <qel/morphology/EuclideanDistanceMap.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <queue>
#include <vector>

namespace qel::test {

using Spacings = std::array<double, 3>;

inline void setSpacings(ImageModel& image, Spacings const& spacings)
{
    for (int axis = 0; axis < 3; ++axis)
        image.setSpacingOf(static_cast<Components>(axis), spacings[axis]);
}

/// One of the points half-way across the boundary.
struct BoundaryPoint
{
    std::size_t voxel;
    float distance;
    std::array<float, 3> position;
};

/// The distance map with one queue of the standard library, voxel by voxel.
template <class T> class DistanceModel
{
public:
    DistanceModel(Picture<T> const& in, Spacings const& itsSpacings, bool outside, bool mirror)
        : shape(in.shape)
        , map(in.shape)
    {
        for (int axis = 0; axis < 3; ++axis)
            spacings[axis] = static_cast<float>(itsSpacings[axis]);
        auto const isInside = [&](long x, long y, long z) {
            long const sizes[] = {long(shape.columns), long(shape.rows), long(shape.plans)};
            long place[] = {x, y, z};
            for (int axis = 0; axis < 3; ++axis)
                if (place[axis] < 0 || place[axis] >= sizes[axis]) {
                    if (!mirror)
                        return false;
                    place[axis] = std::clamp(place[axis], 0l, sizes[axis] - 1); // the mirror repeats the edge
                }
            return (in.at(place[0], place[1], place[2]) != 0) != outside;
        };
        forEachVoxel(shape, [&](long x, long y, long z, long, long) {
            if (isInside(x, y, z))
                start(isInside, x, y, z);
        });
        spread(isInside);
    }

    Picture<float> const& distances() const { return map; }
    std::vector<BoundaryPoint> const& boundary() const { return points; }

private:
    struct Vertex
    {
        float distance;
        std::size_t order;
        std::size_t voxel;
        std::size_t point;
        bool operator<(Vertex const& other) const
        {
            return distance != other.distance ? distance > other.distance : order > other.order;
        }
    };

    float coordinate(int axis, long place) const { return static_cast<float>(double(place) * spacings[axis]); }

    template <class IsInside> void start(IsInside const& isInside, long x, long y, long z)
    {
        float best = std::numeric_limits<float>::max();
        std::vector<BoundaryPoint> mine;
        for (int k = 0; k < 27; ++k) {
            int const dx = k % 3 - 1, dy = k % 9 / 3 - 1, dz = k / 9 - 1;
            if (k == 13 || isInside(x + dx, y + dy, z + dz))
                continue;
            double const hx = 0.5 * dx * spacings[0], hy = 0.5 * dy * spacings[1], hz = 0.5 * dz * spacings[1];
            float const distance = static_cast<float>(std::sqrt(hx * hx + hy * hy + hz * hz));
            if (best > distance) {
                mine.clear();
                best = distance;
            }
            if (best == distance)
                mine.push_back({map.index(x, y, z),
                                distance,
                                {static_cast<float>(double(x) * spacings[0] + hx),
                                 static_cast<float>(double(y) * spacings[1] + hy),
                                 static_cast<float>(double(z) * spacings[2] + hz)}});
        }
        map.at(x, y, z) = best;
        points.insert(points.end(), mine.begin(), mine.end());
    }

    template <class IsInside> void spread(IsInside const& isInside)
    {
        std::priority_queue<Vertex> queue;
        std::size_t order = 0;
        for (std::size_t point = 0; point < points.size(); ++point)
            queue.push({points[point].distance, order++, points[point].voxel, point});
        while (!queue.empty()) {
            Vertex const top = queue.top();
            queue.pop();
            if (map.voxels[top.voxel] < top.distance)
                continue;
            long const x = long(top.voxel % shape.columns), y = long(top.voxel / shape.columns % shape.rows),
                       z = long(top.voxel / shape.columns / shape.rows);
            for (int k = 0; k < 27; ++k) {
                long const nx = x + k % 3 - 1, ny = y + k % 9 / 3 - 1, nz = z + k / 9 - 1;
                if (k == 13 || nx < 0 || ny < 0 || nz < 0 || nx >= long(shape.columns) || ny >= long(shape.rows) ||
                    nz >= long(shape.plans) || !isInside(nx, ny, nz))
                    continue;
                auto const& position = points[top.point].position;
                double const dx = double(position[0]) - coordinate(0, nx), dy = double(position[1]) - coordinate(1, ny),
                             dz = double(position[2]) - coordinate(2, nz);
                float const distance = static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz));
                if (map.at(nx, ny, nz) > distance) {
                    map.at(nx, ny, nz) = distance;
                    queue.push({distance, order++, map.index(nx, ny, nz), top.point});
                }
            }
        }
    }

    Shape shape;
    std::array<double, 3> spacings;
    Picture<float> map;
    std::vector<BoundaryPoint> points;
};

} // namespace qel::test
