#pragma once

#include <qel/OptimLevelType.h>

#include <atomic>
#include <mutex>
#include <vector>

namespace qel {

class BaseAlgorithm;
class BaseProperty;

namespace algorithms {

class AbstractPrivateImplementation;
class InteractionInterface;

class BaseAlgorithmPrivate
{
public:
    BaseAlgorithmPrivate(BaseAlgorithm* algorithm, AbstractPrivateImplementation* parent);
    ~BaseAlgorithmPrivate();

    /// Takes the first runner that fits. Throws UnexpectedError "no runner found for algorithm".
    void runInternal();
    void runInternal(InteractionInterface* interaction);
    /// Runs on the scheduler while the calling thread polls `interaction`.
    void runPolled(InteractionInterface& interaction);

    double getProgress();
    void setImplementation(AbstractPrivateImplementation* implementation);
    /// The final progress of an implementation that is going away.
    void withdrawImplementation(double progress);
    void cancelExecution();
    bool isExecutionCancelled();

    BaseAlgorithm* publicAlgorithm;
    std::vector<BaseProperty*> inputs;
    std::vector<BaseProperty*> outputs;
    bool autoCpuDispatch = true;
    OptimLevelType optimLevel = SCALAR;
    int maxExtraMemory = 100;
    std::atomic<bool> running{false};

private:
    /// Cancels the polled run, also one whose implementation does not exist yet.
    void cancelRun();
    bool runFor(OptimLevelType level);
    void report(InteractionInterface& host);

    AbstractPrivateImplementation* impl = nullptr;
    InteractionInterface* interaction = nullptr;
    std::mutex mutex;   // guards impl, and with it the calculation of progress
    std::mutex reports; // held while a host is told its progress: a polled run tells it on two threads
    double lastProgress = 0;
    bool cancelRequested = false;
    AbstractPrivateImplementation* parent;
};

} // namespace algorithms
} // namespace qel
