#pragma once

#include "Core/private/ImageToQuantificationFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/storeResult.h"

#include <qel/Scalar.h>

#include <boost/make_shared.hpp>

namespace qel::analysis {

/// Runs a measuring body over the whole image. Blocks are always cut down to the grains here, so that results do not
/// follow the schedule: the default ones are too small for the little work a voxel takes.
template <class T, class Arch, class Body>
void measure(BaseAlgorithm& owner, ImageModel const* input, ConditionOf<T> condition, Body& body)
{
    ImageToQuantificationFilter3d<T, Arch, Body> filter(&owner, &body);
    filter.setPartitionerInformation(boost::make_shared<PartitionerInfoFixed>(8192, 64, 16));
    filter.setInput(input, condition);
    filter.run();
}

/// Both zeros of the reals become +0: which of them was met first would tell one level from the other.
template <class Algorithm, class Body> void storeExtrema(Algorithm& owner, Body const& body)
{
    using T = decltype(body.minimum);
    storeResult(owner.outputMinimum, Scalar(static_cast<T>(body.minimum + T(0))));
    storeResult(owner.outputMaximum, Scalar(static_cast<T>(body.maximum + T(0))));
}

} // namespace qel::analysis
