#pragma once

// All that the frames need of the parallel loops. No voxel type is in sight: the loops are compiled once.
#include "Core/private/FilterTags.h"

#include <qel/access/Block2d.h>
#include <qel/access/Block3d.h>

#include <memory>

namespace qel {

class BaseTbbAlgorithm;

namespace access {

/// The work on one block: one virtual call a block, none a voxel.
template <class B> class BlockTask
{
public:
    virtual void runBlock(B const& block) = 0;

protected:
    ~BlockTask() = default;
};

/// Work that accumulates. Halves are split off, and joined in an order that the blocks alone decide.
template <class B> class ReductionTask
{
public:
    virtual ~ReductionTask() = default;
    virtual void runBlock(B const& block) = 0;
    /// An empty accumulation for the right half.
    virtual std::unique_ptr<ReductionTask> split() = 0;
    virtual void join(ReductionTask& right) = 0;
};

/// Runs the task on every block of the owner's region: slice by slice, and in parallel within a slice. After each slice
/// what was deferred is written. False if the run was cancelled.
bool runSlices(BaseTbbAlgorithm& owner, BlockTask<Block2d>& task);
bool runSlices(BaseTbbAlgorithm& owner, BlockTask<Block3d>& task);
bool runSlices(BaseTbbAlgorithm& owner, ReductionTask<Block2d>& task);
bool runSlices(BaseTbbAlgorithm& owner, ReductionTask<Block3d>& task);

/// Runs the task in parallel on the blocks of one slice. What was deferred is left to the caller. False if the run was
/// cancelled.
bool runBlocks(BaseTbbAlgorithm& owner, BlockTask<Block2d>& task, Block2d const& slice);
bool runBlocks(BaseTbbAlgorithm& owner, BlockTask<Block3d>& task, Block3d const& slice);

} // namespace access
} // namespace qel
