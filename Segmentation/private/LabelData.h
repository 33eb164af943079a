#pragma once

#include <compare>

namespace qel::segmentation::details {

/// The name of a block: where it begins. Blocks are ordered by columns, then by rows.
struct BlockStartPoint
{
    long colsBegin = -1;
    long rowsBegin = -1;

    auto operator<=>(BlockStartPoint const&) const = default;
};

/// A label of a block.
///
/// In the table of a block, entry k - 1 tells of label k: of no block and label 0, it is a root without a number; of a
/// block, it names its parent; of no block and any other label, it is a root with its number. Along the border of a
/// block, it is the label of a voxel, and of no block where there is none.
template <class L> struct LabelData
{
    BlockStartPoint block;
    L label = 0;

    bool operator==(LabelData const&) const = default;
};

} // namespace qel::segmentation::details
