#include <qel/AlgoBorderInfluence.h>

#include "Core/private/Throw.h"

namespace qel {

AlgoBorderInfluence::AlgoBorderInfluence(unsigned long columns, unsigned long rows, unsigned long plans,
                                         unsigned long timeSeries, unsigned long spectralSeries)
    : AlgoBorderInfluence(columns, columns, rows, rows, plans, plans, timeSeries, timeSeries, spectralSeries,
                          spectralSeries)
{}

AlgoBorderInfluence::AlgoBorderInfluence(unsigned long columnsNegative, unsigned long columnsPositive,
                                         unsigned long rowsNegative, unsigned long rowsPositive,
                                         unsigned long plansNegative, unsigned long plansPositive,
                                         unsigned long timeSeriesNegative, unsigned long timeSeriesPositive,
                                         unsigned long spectralSeriesNegative, unsigned long spectralSeriesPositive)
    : m_counts{columnsNegative,
               columnsPositive,
               rowsNegative,
               rowsPositive,
               plansNegative,
               plansPositive,
               timeSeriesNegative,
               timeSeriesPositive,
               spectralSeriesNegative,
               spectralSeriesPositive,
               0}
{}

unsigned long AlgoBorderInfluence::getNumOfVoxels(DirectionTypes direction) const { return m_counts[direction]; }

void AlgoBorderInfluence::setNumOfVoxels(DirectionTypes direction, unsigned long count)
{
    // Hosts rely on 10 passing, though it is no direction; it has a place of its own.
    if (static_cast<unsigned int>(direction) > 10)
        QEL_THROW(BadIndex, "Invalid direction.");
    m_counts[direction] = count;
}

} // namespace qel
