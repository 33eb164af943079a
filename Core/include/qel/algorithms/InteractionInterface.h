#pragma once

#include <qel/Export.h>

namespace qel::algorithms {

/// What a host implements to see the progress of a run and to cancel it.
///
/// A run that is given one executes on the scheduler's threads, while the thread that called `run` polls: it wakes
/// every 20 milliseconds and calls the operations below. One last `updateProgress` comes from a thread of the
/// scheduler.
class QEL_API InteractionInterface
{
public:
    /// `percent` runs from 0 to 100.
    virtual void updateProgress(double percent) = 0;
    /// True asks the run to stop: it then returns normally, with partial outputs.
    virtual bool isCancelRequested() = 0;
    /// Milliseconds between two calls of updateProgress; at most 100 count.
    virtual unsigned short getProgressPeriod() = 0;
    /// Milliseconds before the first call of isCancelRequested; at most 100 count. Later calls follow the progress
    /// period.
    virtual unsigned short getCancelPeriod() = 0;

protected:
    ~InteractionInterface() = default;
};

} // namespace qel::algorithms
