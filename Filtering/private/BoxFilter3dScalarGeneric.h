#pragma once

#include "Filtering/private/BoxFilterOutput.h"

#include <qel/access/Block3d.h>
#include <qel/math/Vector3.h>

namespace qel::filtering::smoothing {

/// Sums across plans, then rows, then along rows.
template <class View, class Sum>
[[gnu::noinline]] void sumBoxes(View const& view, access::Block3d const& block, math::Vector3<unsigned int> const& size,
                                typename RowSums<Sum>::Sink& sink)
{
    BoxRange const plans(block.plansBegin(), block.plansEnd(), size[2], view.numOfPlans());
    BoxRange const rows(block.rowsBegin(), block.rowsEnd(), size[1], view.numOfRows());
    BoxRange const columns(block.colsBegin(), block.colsEnd(), size[0], view.numOfCols());

    unsigned long const length = columns.inside();
    SliceRows<View> voxels(view, block, columns);
    auto const fetchFromImage = [&](long plan, unsigned long row) {
        return voxels.fetch(plan, rows.insideBegin + static_cast<long>(row));
    };
    std::vector<Sum> planSums(length * rows.inside());
    PlanRows<Sum> const fetchFromSums{planSums.data(), rows, length};

    bool const isExact = sumsAreExact<typename View::VoxelType, Sum>(static_cast<double>(size[0]) * size[1] * size[2]);
    SlidingSums<Sum> across(plans.side, length, rows.inside(), isExact);
    RowSums<Sum> sums(rows, columns, isExact);
    across.start(plans.first, fetchFromImage);
    for (unsigned long plan = 0; plan < plans.count; ++plan) {
        across.next(fetchFromImage, [&](unsigned long row) { return planSums.data() + row * length; });
        if (!sums.run(fetchFromSums, plan, sink))
            return;
    }
}

template <class Work, class Operator> class BoxFilter3dScalarGeneric
{
public:
    explicit BoxFilter3dScalarGeneric(math::Vector3<unsigned int> const& size)
        : m_size(size)
    {}

    template <class Filter> void run(access::Block3d const& block, Filter& filter)
    {
        double const area =
            static_cast<double>(m_size[0]) * static_cast<double>(m_size[1]) * static_cast<double>(m_size[2]);
        BoxFilterOutput<Work, Operator, Filter> output(block, filter, area);
        sumBoxes<typename Filter::InputView, typename SumOf<Work>::type>(*filter.getInputView(), block, m_size, output);
    }

private:
    math::Vector3<unsigned int> m_size;
};

} // namespace qel::filtering::smoothing
