#include "Core/private/AbstractPrivateImplementation.h"

#include "Core/private/BaseAlgorithmPrivate.h"

#include <qel/BaseAlgorithm.h>

namespace qel::algorithms {

AbstractPrivateImplementation::AbstractPrivateImplementation(BaseAlgorithm* owningAlgorithm)
    : owner(owningAlgorithm)
{}

AbstractPrivateImplementation::~AbstractPrivateImplementation() { removeChild(); }

AbstractPrivateImplementation::Publication::Publication(AbstractPrivateImplementation& implementation)
    : m_implementation(implementation)
{
    if (m_implementation.owner)
        m_implementation.owner->getPrivate()->setImplementation(&m_implementation);
}

AbstractPrivateImplementation::Publication::~Publication()
{
    if (m_implementation.owner)
        m_implementation.owner->getPrivate()->withdrawImplementation(m_implementation.getProgress());
}

void AbstractPrivateImplementation::cancelExecution()
{
    cancelled = true;
    std::lock_guard const guard(links);
    if (childAlgorithm)
        childAlgorithm->cancelExecution();
    else if (childImplementation)
        childImplementation->cancelExecution();
}

double AbstractPrivateImplementation::getProgress() const
{
    auto const ownWork = [this] {
        unsigned long const total = totalWork;
        return total == 0 ? 0.0 : 100.0 * static_cast<double>(doneWork) / static_cast<double>(total);
    };
    unsigned long const steps = numOfSteps;
    if (steps < 2)
        return ownWork();

    double const base = static_cast<double>(currentStep - 1) * 100.0;
    std::lock_guard const guard(links);
    double const part = childAlgorithm        ? childAlgorithm->getProgress()
                        : childImplementation ? childImplementation->getProgress()
                                              : ownWork();
    return (base + part) / static_cast<double>(steps);
}

void AbstractPrivateImplementation::setCurrentChild(BaseAlgorithm* child)
{
    std::lock_guard const guard(links);
    clearChild();
    childAlgorithm = child;
}

void AbstractPrivateImplementation::setCurrentChild(AbstractPrivateImplementation* child)
{
    std::lock_guard const guard(links);
    clearChild();
    childImplementation = child;
    {
        std::lock_guard const childGuard(child->links);
        child->parentImplementation = this;
    }
    // A cancellation that came between two children found none to tell.
    if (cancelled)
        child->cancelExecution();
}

void AbstractPrivateImplementation::clearChild()
{
    if (childImplementation) {
        // Else its end would take away the child that comes after it.
        std::lock_guard const guard(childImplementation->links);
        childImplementation->parentImplementation = nullptr;
    }
    childAlgorithm = nullptr;
    childImplementation = nullptr;
}

void AbstractPrivateImplementation::removeChild()
{
    // One link at a time: whoever walks down holds a parent's guard while asking for its child's.
    AbstractPrivateImplementation* parent = nullptr;
    {
        std::lock_guard const guard(links);
        childAlgorithm = nullptr;
        childImplementation = nullptr;
        parent = parentImplementation;
        parentImplementation = nullptr;
    }
    while (parent) {
        AbstractPrivateImplementation* const current = parent;
        std::lock_guard const guard(current->links);
        current->childImplementation = nullptr;
        parent = current->parentImplementation;
        current->parentImplementation = nullptr;
    }
}

} // namespace qel::algorithms
