#pragma once

#include <qel/access/Block.h>

namespace qel::access {

/// A plain box in the five components of an image. The default region is one voxel: every begin 0 and every end 1.
class QEL_API Region final : public Block
{
public:
    Region() = default;

    /// Every end is exclusive. Nothing checks the coordinates.
    Region(unsigned long rowsBegin, unsigned long rowsEnd, unsigned long colsBegin, unsigned long colsEnd,
           unsigned long plansBegin, unsigned long plansEnd, unsigned long timeSeriesBegin, unsigned long timeSeriesEnd,
           unsigned long spectralSeriesBegin, unsigned long spectralSeriesEnd);

    unsigned long getNbRows() const override { return m_rowsEnd - m_rowsBegin; }
    unsigned long rowsBegin() const override { return m_rowsBegin; }
    unsigned long rowsEnd() const override { return m_rowsEnd; }
    unsigned long getNbCols() const override { return m_colsEnd - m_colsBegin; }
    unsigned long colsBegin() const override { return m_colsBegin; }
    unsigned long colsEnd() const override { return m_colsEnd; }
    unsigned long getNbPlans() const override { return m_plansEnd - m_plansBegin; }
    unsigned long plansBegin() const override { return m_plansBegin; }
    unsigned long plansEnd() const override { return m_plansEnd; }
    unsigned long getNbTimeSeries() const override { return m_timeSeriesEnd - m_timeSeriesBegin; }
    unsigned long timeSeriesBegin() const override { return m_timeSeriesBegin; }
    unsigned long timeSeriesEnd() const override { return m_timeSeriesEnd; }
    unsigned long getNbSpectralSeries() const override { return m_spectralSeriesEnd - m_spectralSeriesBegin; }
    unsigned long spectralSeriesBegin() const override { return m_spectralSeriesBegin; }
    unsigned long spectralSeriesEnd() const override { return m_spectralSeriesEnd; }

    /// The product of the five counts.
    unsigned long getNumOfVoxels() const;

private:
    unsigned long m_rowsBegin = 0;
    unsigned long m_rowsEnd = 1;
    unsigned long m_colsBegin = 0;
    unsigned long m_colsEnd = 1;
    unsigned long m_plansBegin = 0;
    unsigned long m_plansEnd = 1;
    unsigned long m_timeSeriesBegin = 0;
    unsigned long m_timeSeriesEnd = 1;
    unsigned long m_spectralSeriesBegin = 0;
    unsigned long m_spectralSeriesEnd = 1;
};

} // namespace qel::access
