#include "Registration/private/ShapeBasedMatching/GradientField.h"

#include "Core/private/Access/FixedBorderCondition.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <atomic>
#include <cmath>

namespace qel::registration {

DoubleImage::DoubleImage(ImageModel const* image)
    : m_adapter(const_cast<ImageModel*>(image), QEL_FLOAT64)
    , m_view(access::View<double>::New(static_cast<ImageModel const*>(m_adapter.getImage()),
                                       access::FixedBorderCondition<double>::New(0)))
{}

std::vector<access::RowPosition> DoubleImage::plans() const
{
    std::vector<access::RowPosition> all;
    for (long time = 0; time < static_cast<long>(m_view->numOfTimeSeries()); ++time)
        for (long plan = 0; plan < static_cast<long>(m_view->numOfPlans()); ++plan)
            for (long series = 0; series < static_cast<long>(m_view->numOfSpectralSeries()); ++series)
                all.push_back({0, 0, plan, time, series});
    return all;
}

namespace {

/// False where something is no number.
bool normalise(double* x, double* y, long count)
{
    bool isNumber = true;
    for (long i = 0; i < count; ++i) {
        double const length = std::sqrt(x[i] * x[i] + y[i] * y[i]);
        bool const hasDirection = length > 0;
        x[i] = hasDirection ? x[i] / length : 0;
        y[i] = hasDirection ? y[i] / length : 0;
        isNumber = isNumber && x[i] == x[i] && y[i] == y[i];
    }
    return isNumber;
}

} // namespace

GradientField::GradientField(GradientImages const& images, access::RowPosition const& plan, Window const& window,
                             long reach, tbb::task_group_context& context)
    : m_colsBegin(window.colsBegin + std::max(-reach, window.lowestCol()))
    , m_rowsBegin(std::max(window.rowsBegin - reach, 0l))
    , m_rowsEnd(std::min(window.rowsEnd + reach, window.numOfRows))
{
    long const colsEnd = window.colsEnd + std::min(reach, window.highestCol());
    // The last positions that are scored at once may lie behind the last one of the window.
    m_stride = colsEnd - m_colsBegin + static_cast<long>(positionsAtOnce);
    std::size_t const size = static_cast<std::size_t>(m_stride * (m_rowsEnd - m_rowsBegin));
    m_x.resize(size);
    m_y.resize(size);
    long const firstCol = std::max(m_colsBegin, 0l);
    long const count = std::min(colsEnd, window.numOfCols) - firstCol;
    std::atomic<bool> allNumbers = true;
    tbb::parallel_for(
        tbb::blocked_range<long>(m_rowsBegin, m_rowsEnd, 16),
        [&](tbb::blocked_range<long> const& rows) {
            for (long row = rows.begin(); row < rows.end(); ++row) {
                double* const x = m_x.data() + indexOf(firstCol, row);
                double* const y = m_y.data() + indexOf(firstCol, row);
                access::RowPosition at = plan;
                at.column = firstCol;
                at.row = row;
                images.x->read(x, static_cast<unsigned long>(count), at);
                images.y->read(y, static_cast<unsigned long>(count), at);
                if (!normalise(x, y, count))
                    allNumbers = false;
            }
        },
        context);
    m_hasNaN = !allNumbers;
}

} // namespace qel::registration
