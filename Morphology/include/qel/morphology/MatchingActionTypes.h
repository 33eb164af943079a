#pragma once

namespace qel::morphology {

/// What a hit-or-miss operation makes of a voxel `c`.
enum MatchingActionTypes
{
    SET_ZERO = 0, ///< 0
    SET_ONE,      ///< 1
    SET_CHANGE,   ///< 1 - c
    SET_UNCHANGE  ///< c
};

} // namespace qel::morphology
