#pragma once

#include <qel/Algorithm.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>

namespace qel::point_operations {

/// Remaps intensities by a table: out(x) = lut[(in(x) - low) / step] where in(x) lies in the range from low to high.
///
/// `input`: any of the ten real voxel types, any five sizes. `inputRange` (low and high intensity, default 0 and 255):
/// both belong to the range. `step` (intensities for each entry, default 1, above 2.220446049250313e-16): the index is
/// cut towards 0. `lut` (default empty): at least (high - low) / step + 1 entries. `lowIntensity`, `highIntensity`
/// (defaults 0): the results below and above the range. `output`: takes sizes, spacing, origin, voxel type and
/// interpretation of `input`; may be `input` itself. Results are cast to its type: fractions are cut, and what does not
/// fit wraps. A NaN voxel, which is neither below nor above the range, takes the first entry.
///
/// Throws RuleException, before any voxel changes, when an image is missing, `step` is too small or `lut` is empty;
/// InvalidCall, before any voxel changes, when `lut` is shorter than the range, or range or step is a NaN.
class QEL_API Anamorphosis : public BaseAlgorithm
{
    QEL_ALGORITHM(Anamorphosis)

public:
    Property<ImageModel const*> input;
    Property<math::Vector2<double>> inputRange;
    Property<double> step;
    Property<container::Vector<double>> lut;
    Property<double> lowIntensity;
    Property<double> highIntensity;
    Property<ImageModel*> output;
};

} // namespace qel::point_operations
