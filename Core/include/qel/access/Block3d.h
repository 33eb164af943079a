#pragma once

#include <qel/access/Block.h>
#include <qel/access/Range.h>
#include <tbb/blocked_range.h> // tbb::split

namespace qel::access {

/// A box of plans, rows and columns in one series, which a loop of TBB can split: a range of `tbb::parallel_for`.
///
/// A split cuts the axis with the greatest ratio of size to grain. Where ratios are equal, plans go before rows and
/// rows before columns. Blocks are values and are copied freely.
class QEL_API Block3d final : public Block
{
public:
    Block3d(Range const& plans, Range const& rows, Range const& cols, unsigned long timeSeries,
            unsigned long spectralSeries);
    Block3d(Block3d const&) = default;
    Block3d& operator=(Block3d const&) = default;

    /// Cuts one axis [begin, end) of `other` at begin + (end - begin) / 2: `other` keeps the part before, the new block
    /// gets the part behind.
    Block3d(Block3d& other, tbb::split);

    /// Whether any axis has no voxel. A parallel loop over an empty block calls no body.
    bool empty() const;
    /// Whether any axis is longer than its grain.
    bool is_divisible() const;

    unsigned long getNbRows() const override { return m_rows.end - m_rows.begin; }
    unsigned long rowsBegin() const override { return m_rows.begin; }
    unsigned long rowsEnd() const override { return m_rows.end; }
    unsigned long getNbCols() const override { return m_cols.end - m_cols.begin; }
    unsigned long colsBegin() const override { return m_cols.begin; }
    unsigned long colsEnd() const override { return m_cols.end; }
    unsigned long getNbPlans() const override { return m_plans.end - m_plans.begin; }
    unsigned long plansBegin() const override { return m_plans.begin; }
    unsigned long plansEnd() const override { return m_plans.end; }
    unsigned long getNbTimeSeries() const override { return 1; }
    unsigned long timeSeriesBegin() const override { return m_timeSeries; }
    unsigned long timeSeriesEnd() const override { return m_timeSeries + 1; }
    unsigned long getNbSpectralSeries() const override { return 1; }
    unsigned long spectralSeriesBegin() const override { return m_spectralSeries; }
    unsigned long spectralSeriesEnd() const override { return m_spectralSeries + 1; }

    /// Rows times columns times plans.
    unsigned long getNumOfVoxels() const { return getNbRows() * getNbCols() * getNbPlans(); }

private:
    Range m_plans;
    Range m_rows;
    Range m_cols;
    unsigned long m_timeSeries;
    unsigned long m_spectralSeries;
};

} // namespace qel::access
