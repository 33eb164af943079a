#pragma once

#include <atomic>
#include <mutex>

namespace qel {

class BaseAlgorithm;

namespace algorithms {

/// The running side of an algorithm, which exists while a runner works.
///
/// While it runs it is published as its owner's implementation: see Publication. Progress and cancellation come from
/// any thread, so what they read is atomic, and the links to a child are guarded. They are followed with the owner's
/// mutex held, parent before child.
class AbstractPrivateImplementation
{
public:
    explicit AbstractPrivateImplementation(BaseAlgorithm* owner);
    AbstractPrivateImplementation(AbstractPrivateImplementation const&) = delete;
    AbstractPrivateImplementation& operator=(AbstractPrivateImplementation const&) = delete;
    virtual ~AbstractPrivateImplementation();

    virtual void cancelExecution();

    /// For an implementation that is published after its run was cancelled: it starts nothing.
    void markCancelled() { cancelled = true; }
    bool isCancelled() const { return cancelled; }
    BaseAlgorithm* getOwner() const { return owner; }

    /// In percent: of the work, or of the steps of a composite with the part of the step under way.
    double getProgress() const;

    void setTotalWork(unsigned long work)
    {
        doneWork = 0;
        totalWork = work;
    }
    void addDoneWork(unsigned long work) { doneWork.fetch_add(work, std::memory_order_relaxed); }

    void setNumOfSteps(unsigned long steps) { numOfSteps = steps; }
    void nextStep() { currentStep.fetch_add(1); }

    /// Makes this the implementation that the owner's progress and cancellation reach, for as long as the object lives.
    /// A complete object publishes itself, at the begin of its run: nobody calls into one that is half made or half
    /// gone.
    class Publication
    {
    public:
        explicit Publication(AbstractPrivateImplementation& implementation);
        Publication(Publication const&) = delete;
        Publication& operator=(Publication const&) = delete;
        /// Leaves the final progress with the owner.
        ~Publication();

    private:
        AbstractPrivateImplementation& m_implementation;
    };

    void setCurrentChild(BaseAlgorithm* child);
    void setCurrentChild(AbstractPrivateImplementation* child);
    void removeChild();

protected:
    std::atomic<bool> cancelled{false};
    BaseAlgorithm* owner;

private:
    /// Forgets the child alone, with `links` held: the chain above stays.
    void clearChild();

    BaseAlgorithm* childAlgorithm = nullptr;
    AbstractPrivateImplementation* childImplementation = nullptr;
    AbstractPrivateImplementation* parentImplementation = nullptr;
    std::atomic<unsigned long> doneWork{0};
    std::atomic<unsigned long> totalWork{0};
    std::atomic<unsigned long> currentStep{1};
    std::atomic<unsigned long> numOfSteps{1};
    mutable std::mutex links; // guards the three links
};

} // namespace algorithms
} // namespace qel
