#pragma once

namespace qel {

class AlgoBorderInfluence;

namespace access {

// How wide the zone at each side of a block is that a neighbouring block may read. All zero by default: nobody reads
// more than the voxel that it writes.
class OverlapBorder
{
public:
    OverlapBorder() = default;
    // Lower and upper are crossed: a voxel at the low side of a block is read by the block below it, through that
    // block's positive reach.
    explicit OverlapBorder(AlgoBorderInfluence const& influence);

    unsigned long rowsLower = 0;
    unsigned long rowsUpper = 0;
    unsigned long colsLower = 0;
    unsigned long colsUpper = 0;
    unsigned long plansLower = 0;
    unsigned long plansUpper = 0;
};

} // namespace access
} // namespace qel
