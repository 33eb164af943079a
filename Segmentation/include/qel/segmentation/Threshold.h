#pragma once

#include <qel/Algorithm.h>

namespace qel::segmentation {

/// Keeps an intensity band: out(x) = 1 where lowLevel <= in(x) <= highLevel, and 0 elsewhere.
///
/// `input`: any of the ten real voxel types, with one spectral series. `lowLevel`, `highLevel` (intensities, defaults 0
/// and 255): both belong to the band, and are compared as doubles; the wrong way round they select nothing. A NaN voxel
/// compares false with both and gives 1. `output`: of an 8- or 16-bit integer type; takes sizes, spacing and origin of
/// `input`, and becomes a binary image.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size.
class QEL_API Threshold : public BaseAlgorithm
{
    QEL_ALGORITHM(Threshold)

public:
    Property<ImageModel const*> input;
    Property<double> lowLevel;
    Property<double> highLevel;
    Property<ImageModel*> output;
};

} // namespace qel::segmentation
