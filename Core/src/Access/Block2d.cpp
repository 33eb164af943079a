#include "Core/private/Access/SplitRange.h"
#include <qel/access/Block2d.h>

namespace qel::access {

Block2d::Block2d(Range const& rows, Range const& cols, unsigned long plan, unsigned long timeSeries,
                 unsigned long spectralSeries)
    : m_rows(withUsableGrain(rows))
    , m_cols(withUsableGrain(cols))
    , m_plan(plan)
    , m_timeSeries(timeSeries)
    , m_spectralSeries(spectralSeries)
{}

Block2d::Block2d(Block2d& other, tbb::split)
    : Block2d(other)
{
    if (isLonger(m_cols, m_rows))
        cut(other.m_cols, m_cols);
    else
        cut(other.m_rows, m_rows);
}

bool Block2d::empty() const { return isEmpty(m_rows) || isEmpty(m_cols); }

bool Block2d::is_divisible() const { return isDivisible(m_rows) || isDivisible(m_cols); }

} // namespace qel::access
