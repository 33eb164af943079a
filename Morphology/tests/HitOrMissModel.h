#pragma once

#include "Morphology/tests/BinaryPicture.h"

#include <qel/morphology/BinaryBorderConditionTypes.h>
#include <qel/morphology/MatchingActionTypes.h>

#include <algorithm>

namespace qel::test {

/// Sets each voxel to `rule(neighbour)`, where `neighbour(column, row, plan)` gives the voxel at these steps.
template <class T, class Rule> Picture<T> byNeighbours(Picture<T> const& in, int borderCondition, Rule const& rule)
{
    Picture<T> out(in.shape);
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        auto const neighbour = [&](long column, long row, long plan) {
            long const steps[] = {column, row, plan};
            unsigned long at[] = {c, r, p};
            unsigned long const sizes[] = {in.shape.columns, in.shape.rows, in.shape.plans};
            for (int axis = 0; axis < 3; ++axis) {
                long const wanted = static_cast<long>(at[axis]) + steps[axis];
                long const nearest = std::clamp(wanted, 0l, static_cast<long>(sizes[axis]) - 1);
                if (wanted != nearest && borderCondition == morphology::STOP_OBJECT)
                    return T(0);
                at[axis] = static_cast<unsigned long>(nearest);
            }
            return in.at(at[0], at[1], at[2], t, s);
        };
        out.at(c, r, p, t, s) = rule(neighbour);
    });
    return out;
}

} // namespace qel::test
