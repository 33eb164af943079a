#pragma once

#include "Core/private/ImageToQuantificationFilter.h"
#include "Core/private/PartitionerInfoFixed.h"

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

} // namespace qel::analysis
