#pragma once

#include <qel/AlgoBorderInfluence.h>
#include <qel/Export.h>
#include <qel/Object.h>
#include <qel/OptimLevelType.h>
#include <qel/String.h>

namespace qel {

class AlgoInfo;
class BaseProperty;

namespace algorithms {
class AbstractPrivateImplementation;
class BaseAlgorithmPrivate;
class InteractionInterface;
} // namespace algorithms

/// What every algorithm is to a host: named properties, a run, its progress.
///
/// A host creates an algorithm by the static `New` of its class, or by name through AlgoInfo::fromName and
/// createInstance; sets its properties; calls `run`; reads the outputs; and runs again or destroys it. Images stay the
/// host's: a property only points at them, and they must outlive the run.
class QEL_API BaseAlgorithm : public Object
{
public:
    BaseAlgorithm(BaseAlgorithm const&) = delete;
    BaseAlgorithm& operator=(BaseAlgorithm const&) = delete;
    ~BaseAlgorithm() override;

    /// The record of the class: its name, and how to create another one.
    virtual AlgoInfo* getInfo() const = 0;

    /// How many voxels beyond a voxel the algorithm reads in each direction.
    virtual AlgoBorderInfluence getAlgoBorderInfluence() const = 0;

    /// Applies the rules of all inputs, then of all outputs, in declaration order. Part of `run`.
    virtual void applyAllRules();

    /// Checks the parameters, shapes the output images and computes.
    ///
    /// Without `interaction` it computes on the calling thread and the scheduler's; with one it computes on the
    /// scheduler's alone, and the calling thread reports progress and asks for cancellation. A cancelled run returns
    /// normally. A call during a run returns at once and does nothing.
    ///
    /// Throws RuleException for a bad parameter, before any voxel changes, and ProcessingException for what fails
    /// later; the last level of each names this algorithm. The algorithm can be run again afterwards.
    void run(algorithms::InteractionInterface* interaction = nullptr);

    /// Whether a run is under way.
    bool running() const;

    /// Percent done, from any thread. Keeps the last value after a run; 0 before the first.
    double getProgress() const;

    /// Asks a run to stop, from any thread: started blocks finish, no new one starts.
    void cancelExecution();
    bool isExecutionCancelled() const;

    /// With automatic dispatch (the default) the most capable level that can run is taken; without it, the level of
    /// setOptimLevel and no other.
    void setAutoCpuDispatch(bool automatic);
    void setOptimLevel(OptimLevelType const& level);
    bool isOptimLevelSupported(OptimLevelType const& level) const;
    OptimLevelType getMostPerformantAvailableOptimLevel() const;

    /// Percent of the machine's memory that may be taken for temporary images; 100 by default, not checked.
    void setMaximumExtraMemoryUsage(int percent);
    int getMaximumExtraMemoryUsage() const;
    /// The same as a limit in bytes. It is a very high one: 2 to the 20th times the share of the memory.
    unsigned long getMaximumExtraMemoryUsageInBytes() const;

    unsigned long getNumOfInputProperties() const;
    unsigned long getNumOfOutputProperties() const;
    unsigned long getNumOfProperties() const;
    /// In declaration order; the index is not checked.
    BaseProperty* getInputProperty(unsigned long index) const;
    BaseProperty* getOutputProperty(unsigned long index) const;
    /// The first property of this name, inputs first; null if there is none.
    BaseProperty* getPropertyfromName(String const& name) const;

    /// Inside of the library.
    algorithms::BaseAlgorithmPrivate* getPrivate() const;

protected:
    explicit BaseAlgorithm(algorithms::AbstractPrivateImplementation* parent);

    void addInput(BaseProperty* property);
    void addOutput(BaseProperty* property);
    void lockAllProperties(bool locked);

private:
    algorithms::BaseAlgorithmPrivate* m_private;
};

} // namespace qel
