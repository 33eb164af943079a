#pragma once

#include <qel/OptimLevelType.h>

namespace qel {

class BaseAlgorithm;

/// What runs an algorithm at one optimisation level. Stateless, and shared by all objects of the algorithm's class.
class Runnable
{
public:
    virtual void run(BaseAlgorithm* algorithm) const = 0;
    /// Whether this processor, and the algorithm's images, suit this runner.
    virtual bool isRunnable(BaseAlgorithm* algorithm) const = 0;
    virtual OptimLevelType getOptimType() const = 0;
    virtual ~Runnable() = default;
};

} // namespace qel
