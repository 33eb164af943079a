#pragma once

#include "Core/private/Access/BlockLoop.h"

#include <qel/access/Block2d.h>

#include <tbb/task_group.h> // tbb::task_group_context

namespace qel::segmentation {

/// Cuts the block down to its grains, runs the task on each part, and joins parts in an order that the block alone
/// decides.
void reduceStripes(access::Block2d const& whole, access::ReductionTask<access::Block2d>& task,
                   tbb::task_group_context& context);

/// Runs the task on the same parts.
void forEachStripe(access::Block2d const& whole, access::BlockTask<access::Block2d>& task,
                   tbb::task_group_context& context);

} // namespace qel::segmentation
