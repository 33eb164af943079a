#pragma once

#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Algorithms.h"
#include "Core/tests/Support/FewerRounds.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <vector>

namespace qel::test {

struct Offset
{
    long x, y, z;
};

/// The neighbours within a plan (4 or 8) or a volume (6, 18 or 26).
inline std::vector<Offset> neighboursOf(bool isPlanar, int count)
{
    std::vector<Offset> all;
    int const steps = count == 4 || count == 6 ? 1 : count == 8 || count == 18 ? 2 : 3;
    for (long z = isPlanar ? 0 : -1; z <= (isPlanar ? 0 : 1); ++z)
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 1; ++x)
                if (long const distance = std::abs(x) + std::abs(y) + std::abs(z); distance > 0 && distance <= steps)
                    all.push_back({x, y, z});
    return all;
}

/// Reconstruction with one queue of voxels whose neighbours are due.
template <class M>
Picture<M> reconstructed(Picture<M> const& limit, Picture<M> const& marker, bool erosion, bool isPlanar, int count)
{
    auto const limited = [&](M value, M bound) { return erosion ? std::max(value, bound) : std::min(value, bound); };
    auto const further = [&](M a, M b) { return erosion ? std::min(a, b) : std::max(a, b); };
    M const border = erosion ? std::numeric_limits<M>::max() : M(0);
    auto const neighbours = neighboursOf(isPlanar, count);
    Shape const& shape = limit.shape;
    Picture<M> result(shape);
    std::deque<std::array<long, 4>> queue;
    auto const isInside = [&](long x, long y, long z) {
        return x >= 0 && y >= 0 && z >= 0 && x < long(shape.columns) && y < long(shape.rows) && z < long(shape.plans);
    };
    forEachVoxel(shape, [&](long x, long y, long z, long t, long) {
        M value = marker.at(x, y, z, t);
        for (Offset const& step : neighbours)
            if (!isInside(x + step.x, y + step.y, z + step.z))
                value = further(limited(value, limit.at(x, y, z, t)), border);
        result.at(x, y, z, t) = limited(value, limit.at(x, y, z, t));
        queue.push_back({x, y, z, t});
    });
    while (!queue.empty()) {
        auto const [x, y, z, t] = queue.front();
        queue.pop_front();
        for (Offset const& step : neighbours) {
            long const nx = x + step.x, ny = y + step.y, nz = z + step.z;
            if (!isInside(nx, ny, nz))
                continue;
            M const value = limited(further(result.at(nx, ny, nz, t), result.at(x, y, z, t)), limit.at(nx, ny, nz, t));
            if (value != result.at(nx, ny, nz, t)) {
                result.at(nx, ny, nz, t) = value;
                queue.push_back({nx, ny, nz, t});
            }
        }
    }
    return result;
}

template <class To, class From> Picture<To> cast(Picture<From> const& picture)
{
    Picture<To> result(picture.shape);
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        result.voxels[i] = helper::convertVoxel<To>(picture.voxels[i]);
    return result;
}

/// A winding corridor of ones that fills a plan: a square spiral with walls one voxel wide.
inline Picture<unsigned char> spiral(unsigned long side)
{
    Picture<unsigned char> picture(Shape{side, side});
    long x = 0, y = 0, dx = 1, dy = 0;
    auto const isFree = [&](long cx, long cy) {
        return cx >= 0 && cy >= 0 && cx < long(side) && cy < long(side) && picture.at(cx, cy) == 0;
    };
    picture.at(0, 0) = 1;
    for (int turns = 0; turns < 2;) {
        bool const isWallAhead =
            !isFree(x + dx, y + dy) || (x + 2 * dx >= 0 && y + 2 * dy >= 0 && x + 2 * dx < long(side) &&
                                        y + 2 * dy < long(side) && picture.at(x + 2 * dx, y + 2 * dy) != 0);
        if (isWallAhead) {
            long const turned = dx;
            dx = -dy;
            dy = turned;
            ++turns;
        } else {
            x += dx;
            y += dy;
            picture.at(x, y) = 1;
            turns = 0;
        }
    }
    return picture;
}

/// The same in three plans: the corridor goes inwards in the first, on in the middle of the second, and back outwards
/// in the third.
inline Picture<unsigned char> spiralInSpace(unsigned long side)
{
    Picture<unsigned char> const plan = spiral(side);
    Picture<unsigned char> picture(Shape{side, side, 3});
    for (unsigned long y = 0; y < side; ++y)
        for (unsigned long x = 0; x < side; ++x)
            picture.at(x, y, 0) = picture.at(x, y, 2) = plan.at(x, y);
    picture.at(side / 2, side / 2, 1) = 1;
    picture.at(side / 2, side / 2, 0) = picture.at(side / 2, side / 2, 2) = 1;
    return picture;
}

} // namespace qel::test
