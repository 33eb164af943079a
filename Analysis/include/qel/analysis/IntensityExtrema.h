#pragma once

#include <qel/Algorithm.h>
#include <qel/Scalar.h>

namespace qel::analysis {

/// Finds the smallest and the largest voxel of an image, over all plans and series.
///
/// `input`: any of the ten real voxel types, any five sizes. `outputMinimum`, `outputMaximum`: in the kind of the
/// voxels, an unsigned integer, a signed integer or a real number. Of an empty image they are the largest and the
/// smallest value of the type. A NaN is passed over; of reals, -0 counts as 0.
///
/// Levels: scalar, and packets on processors with SSE 4.1 for all but the 64-bit integers.
/// Throws RuleException when the image is missing. Cost: a read of the image.
class QEL_API IntensityExtrema : public BaseAlgorithm
{
    QEL_ALGORITHM(IntensityExtrema)

public:
    Property<ImageModel const*> input;
    Property<Scalar> outputMinimum;
    Property<Scalar> outputMaximum;
};

} // namespace qel::analysis
