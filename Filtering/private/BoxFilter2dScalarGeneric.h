#pragma once

#include "Filtering/private/BoxFilterOutput.h"

#include <qel/access/Block2d.h>
#include <qel/math/Vector2.h>

namespace qel::filtering::smoothing {

/// Sums across rows, then along them.
template <class View, class Sum>
[[gnu::noinline]] void sumBoxes(View const& view, access::Block2d const& block, math::Vector2<unsigned int> const& size,
                                typename RowSums<Sum>::Sink& sink)
{
    BoxRange const rows(block.rowsBegin(), block.rowsEnd(), size[1], view.numOfRows());
    BoxRange const columns(block.colsBegin(), block.colsEnd(), size[0], view.numOfCols());
    SliceRows<View> voxels(view, block, columns);
    long const plan = static_cast<long>(block.plansBegin());
    bool const isExact = sumsAreExact<typename View::VoxelType, Sum>(static_cast<double>(size[0]) * size[1]);
    RowSums<Sum>(rows, columns, isExact).run([&](long row) { return voxels.fetch(plan, row); }, 0, sink);
}

template <class Work, class Operator> class BoxFilter2dScalarGeneric
{
public:
    explicit BoxFilter2dScalarGeneric(math::Vector2<unsigned int> const& size)
        : m_size(size)
    {}

    template <class Filter> void run(access::Block2d const& block, Filter& filter)
    {
        double const area = static_cast<double>(m_size[0]) * static_cast<double>(m_size[1]);
        BoxFilterOutput<Work, Operator, Filter> output(block, filter, area);
        sumBoxes<typename Filter::InputView, typename SumOf<Work>::type>(*filter.getInputView(), block, m_size, output);
    }

private:
    math::Vector2<unsigned int> m_size;
};

} // namespace qel::filtering::smoothing
