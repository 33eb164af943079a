#include <qel/access/Region.h>

namespace qel::access {

Region::Region(unsigned long rowsBegin, unsigned long rowsEnd, unsigned long colsBegin, unsigned long colsEnd,
               unsigned long plansBegin, unsigned long plansEnd, unsigned long timeSeriesBegin,
               unsigned long timeSeriesEnd, unsigned long spectralSeriesBegin, unsigned long spectralSeriesEnd)
    : m_rowsBegin(rowsBegin)
    , m_rowsEnd(rowsEnd)
    , m_colsBegin(colsBegin)
    , m_colsEnd(colsEnd)
    , m_plansBegin(plansBegin)
    , m_plansEnd(plansEnd)
    , m_timeSeriesBegin(timeSeriesBegin)
    , m_timeSeriesEnd(timeSeriesEnd)
    , m_spectralSeriesBegin(spectralSeriesBegin)
    , m_spectralSeriesEnd(spectralSeriesEnd)
{}

unsigned long Region::getNumOfVoxels() const
{
    return getNbRows() * getNbCols() * getNbPlans() * getNbTimeSeries() * getNbSpectralSeries();
}

} // namespace qel::access
