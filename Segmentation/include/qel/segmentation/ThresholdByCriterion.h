#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/Scalar.h>

namespace qel::segmentation {

enum CriterionType
{
    LESS_THAN = 0,
    LESS_THAN_OR_EQUAL_TO,
    EQUAL_TO,
    GREATER_THAN_OR_EQUAL_TO,
    GREATER_THAN,
    NOT_EQUAL_TO
};

/// Compares each voxel with a value: out(x) = 1 where "in(x) criterion value" holds, and 0 elsewhere.
///
/// `input`: any of the ten real voxel types, with one spectral series. `criterion` (a CriterionType, default
/// LESS_THAN). `value` (an intensity, default 128): nothing is clipped; both sides are compared in the smallest type
/// that holds the voxel type and the value, so that 8-bit voxels are all less than 300, and less than 127.5 or not. A
/// NaN voxel fulfils NOT_EQUAL_TO alone. `output`: of an 8- or 16-bit integer type; takes sizes, spacing and origin of
/// `input`, and becomes a binary image.
///
/// Throws RuleException, before any voxel changes, when an image is missing or of another type or size, or the
/// criterion is none of the six.
class QEL_API ThresholdByCriterion : public BaseAlgorithm
{
    QEL_ALGORITHM(ThresholdByCriterion)

public:
    Property<ImageModel const*> input;
    PropertyEnumeration criterion;
    Property<Scalar> value;
    Property<ImageModel*> output;
};

} // namespace qel::segmentation
