#pragma once

#include <qel/DirectionTypes.h>
#include <qel/Export.h>

namespace qel {

/// How many voxels beyond the edge of a block an algorithm reads, in each direction.
class QEL_API AlgoBorderInfluence
{
public:
    /// Each count serves both directions of its axis.
    AlgoBorderInfluence(unsigned long columns, unsigned long rows, unsigned long plans, unsigned long timeSeries,
                        unsigned long spectralSeries);
    AlgoBorderInfluence(unsigned long columnsNegative, unsigned long columnsPositive, unsigned long rowsNegative,
                        unsigned long rowsPositive, unsigned long plansNegative, unsigned long plansPositive,
                        unsigned long timeSeriesNegative, unsigned long timeSeriesPositive,
                        unsigned long spectralSeriesNegative, unsigned long spectralSeriesPositive);

    /// The direction is not checked.
    unsigned long getNumOfVoxels(DirectionTypes direction) const;
    /// Throws BadIndex "Invalid direction." on a direction greater than 10.
    void setNumOfVoxels(DirectionTypes direction, unsigned long count);

private:
    // One place more than directions: setNumOfVoxels lets the direction 10 pass.
    unsigned long m_counts[11];
};

} // namespace qel
