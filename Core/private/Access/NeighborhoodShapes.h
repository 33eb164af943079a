#pragma once

#include <array>

namespace qel {

/// The missing data of the fixed shapes, where the general ones have a list of offsets.
struct NoDataType
{};

namespace access {

/// A step from the centre of a neighbourhood.
struct Step
{
    long x, y, z;
};

constexpr long absolute(long value) { return value < 0 ? -value : value; }

/// The voxels of the 3 x 3 x 3 cube that are at most `reach` axis steps away, in row order. `planar`: those of its
/// middle plan. `half`: those that a forward scan has visited before the centre, and the centre itself.
template <int Count, int Reach, bool Planar, bool Half> constexpr std::array<Step, Count> shapeOf()
{
    std::array<Step, Count> steps{};
    int count = 0;
    for (long z = Planar ? 0 : -1; z <= (Planar ? 0 : 1); ++z)
        for (long y = -1; y <= 1; ++y)
            for (long x = -1; x <= 1; ++x) {
                bool const isAfterCentre = z > 0 || (z == 0 && (y > 0 || (y == 0 && x > 0)));
                if (absolute(x) + absolute(y) + absolute(z) <= Reach && !(Half && isAfterCentre))
                    steps[count++] = {x, y, z};
            }
    return steps;
}

/// Where the centre stands in a list of steps.
template <class Steps> constexpr int centreOf(Steps const& steps)
{
    int index = 0;
    while (steps[index].x != 0 || steps[index].y != 0 || steps[index].z != 0)
        ++index;
    return index;
}

} // namespace access

struct Neighborhood2D_4Tag
{
    static constexpr auto steps = access::shapeOf<5, 1, true, false>();
};
struct Neighborhood2D_8Tag
{
    static constexpr auto steps = access::shapeOf<9, 2, true, false>();
};
struct Neighborhood3D_6Tag
{
    static constexpr auto steps = access::shapeOf<7, 1, false, false>();
};
struct Neighborhood3D_18Tag
{
    static constexpr auto steps = access::shapeOf<19, 2, false, false>();
};
struct Neighborhood3D_26Tag
{
    static constexpr auto steps = access::shapeOf<27, 3, false, false>();
};
struct Neighborhood2D_GenTag
{};
struct Neighborhood3D_GenTag
{};
/// The half shapes hold the forward scan's steps; a backward scan negates them.
struct HalfBiDirNeighborhood2D_4_Output_Tag
{
    static constexpr auto steps = access::shapeOf<3, 1, true, true>();
};
struct HalfBiDirNeighborhood2D_8_Output_Tag
{
    static constexpr auto steps = access::shapeOf<5, 2, true, true>();
};
struct HalfBiDirNeighborhood3D_6_Output_Tag
{
    static constexpr auto steps = access::shapeOf<4, 1, false, true>();
};
struct HalfBiDirNeighborhood3D_18_Output_Tag
{
    static constexpr auto steps = access::shapeOf<10, 2, false, true>();
};
struct HalfBiDirNeighborhood3D_26_Output_Tag
{
    static constexpr auto steps = access::shapeOf<14, 3, false, true>();
};

} // namespace qel
