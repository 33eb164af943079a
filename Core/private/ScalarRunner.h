#pragma once

#include "Core/private/Helper/safe_cast.h"
#include "Core/private/Runnable.h"

#include <qel/BaseAlgorithm.h>

namespace qel {

/// A runner of `Algorithm` on single voxels: it runs on every processor.
template <class Algorithm> class ScalarRunner : public Runnable
{
public:
    void run(BaseAlgorithm* algorithm) const final { runOn(*helper::safe_cast<Algorithm*>(algorithm)); }
    bool isRunnable(BaseAlgorithm*) const override { return true; }
    OptimLevelType getOptimType() const override { return SCALAR; }

protected:
    virtual void runOn(Algorithm& algorithm) const = 0;
};

} // namespace qel
