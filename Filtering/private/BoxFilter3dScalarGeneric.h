#pragma once

#include "Filtering/private/BoxFilterOutput.h"

#include <qel/access/Block3d.h>
#include <qel/math/Vector3.h>

namespace qel::filtering::smoothing {

/// Sums across plans, then rows, then along rows.
template <class Work, class Operator> class BoxFilter3dScalarGeneric
{
public:
    explicit BoxFilter3dScalarGeneric(math::Vector3<unsigned int> const& size)
        : m_size(size)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        using Sum = typename SumOf<Work>::type;
        auto const& view = *filter.getInputView();
        BoxRange const plans(block.plansBegin(), block.plansEnd(), m_size[2], view.numOfPlans());
        BoxRange const rows(block.rowsBegin(), block.rowsEnd(), m_size[1], view.numOfRows());
        BoxRange const columns(block.colsBegin(), block.colsEnd(), m_size[0], view.numOfCols());
        double const area =
            static_cast<double>(m_size[0]) * static_cast<double>(m_size[1]) * static_cast<double>(m_size[2]);

        unsigned long const length = columns.inside();
        std::vector<typename Filter::InputView::VoxelType> voxels(length);
        auto const fetchFromImage = [&](long plan, unsigned long row) {
            view.read(voxels.data(), length, columns.insideBegin, rows.insideBegin + static_cast<long>(row),
                      access::mirrorCoordinate(plan, plans.image), static_cast<long>(block.timeSeriesBegin()),
                      static_cast<long>(block.spectralSeriesBegin()));
            return voxels.data();
        };
        std::vector<Sum> planSums(length * rows.inside());
        auto const fetchFromSums = [&](long row) -> Sum const* { return planSums.data() + rows.indexOf(row) * length; };

        SlidingSums<Sum> across(plans.side, length, rows.inside());
        BoxFilterOutput<Work, Operator, Filter> output(block, filter, rows, columns, area);
        across.start(plans.first, fetchFromImage);
        for (unsigned long plan = 0; plan < plans.count; ++plan) {
            across.next(fetchFromImage, [&](unsigned long row) { return planSums.data() + row * length; });
            if (!output.run(static_cast<long>(plan), fetchFromSums))
                return;
        }
    }

private:
    math::Vector3<unsigned int> m_size;
};

} // namespace qel::filtering::smoothing
