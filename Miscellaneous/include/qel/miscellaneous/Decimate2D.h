#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>

namespace qel::miscellaneous {

enum DecimationOp
{
    MEAN = 0,
    MIN,
    MAX,
    FIRST
};

/// Halves an image in columns and rows: each square of 2 x 2 voxels becomes one voxel, plan by plan.
///
/// `input`: any of the ten real voxel types, any five sizes. Where a size is odd, the last column or row stands for its
/// missing neighbour. `operatorType` (a DecimationOp, default MEAN): MEAN is the quarter of the sum, computed in single
/// precision for every voxel type, and cut; MIN and MAX are the smallest and the greatest voxel of a square (which of
/// them where one is a NaN is open); FIRST is the one at the even column and the even row. `output`: gets half of the
/// columns and rows, rounded up, and the other sizes, the type and the interpretation of `input`. It keeps its own
/// calibration, and may not be `input`.
///
/// Throws RuleException, before any voxel changes, when an image is missing, the output cannot be resized, or the
/// operator is none of the four.
class QEL_API Decimate2D : public BaseAlgorithm
{
    QEL_ALGORITHM(Decimate2D)

public:
    void applyAllRules() override;

    Property<ImageModel const*> input;
    PropertyEnumeration operatorType;
    Property<ImageModel*> output;
};

} // namespace qel::miscellaneous
