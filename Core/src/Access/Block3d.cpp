#include "Core/private/Access/SplitRange.h"
#include <qel/access/Block3d.h>

namespace qel::access {

Block3d::Block3d(Range const& plans, Range const& rows, Range const& cols, unsigned long timeSeries,
                 unsigned long spectralSeries)
    : m_plans(withUsableGrain(plans))
    , m_rows(withUsableGrain(rows))
    , m_cols(withUsableGrain(cols))
    , m_timeSeries(timeSeries)
    , m_spectralSeries(spectralSeries)
{}

Block3d::Block3d(Block3d& other, tbb::split)
    : Block3d(other)
{
    bool const rowsLonger = isLonger(m_rows, m_plans);
    if (isLonger(m_cols, rowsLonger ? m_rows : m_plans))
        cut(other.m_cols, m_cols);
    else if (rowsLonger)
        cut(other.m_rows, m_rows);
    else
        cut(other.m_plans, m_plans);
}

bool Block3d::empty() const { return isEmpty(m_plans) || isEmpty(m_rows) || isEmpty(m_cols); }

bool Block3d::is_divisible() const { return isDivisible(m_plans) || isDivisible(m_rows) || isDivisible(m_cols); }

} // namespace qel::access
