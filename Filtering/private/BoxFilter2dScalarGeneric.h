#pragma once

#include "Filtering/private/BoxFilterOutput.h"

#include <qel/access/Block2d.h>
#include <qel/math/Vector2.h>

namespace qel::filtering::smoothing {

/// Sums across rows, then along them.
template <class Work, class Operator> class BoxFilter2dScalarGeneric
{
public:
    explicit BoxFilter2dScalarGeneric(math::Vector2<unsigned int> const& size)
        : m_size(size)
    {}

    template <class Filter> void run(access::Block2d const& block, Filter& filter)
    {
        auto const& view = *filter.getInputView();
        BoxRange const rows(block.rowsBegin(), block.rowsEnd(), m_size[1], view.numOfRows());
        BoxRange const columns(block.colsBegin(), block.colsEnd(), m_size[0], view.numOfCols());
        double const area = static_cast<double>(m_size[0]) * static_cast<double>(m_size[1]);
        std::vector<typename Filter::InputView::VoxelType> voxels(columns.inside());
        BoxFilterOutput<Work, Operator, Filter> output(block, filter, rows, columns, area);
        output.run(0, [&](long row) {
            view.read(voxels.data(), voxels.size(), columns.insideBegin, access::mirrorCoordinate(row, rows.image),
                      static_cast<long>(block.plansBegin()), static_cast<long>(block.timeSeriesBegin()),
                      static_cast<long>(block.spectralSeriesBegin()));
            return voxels.data();
        });
    }

private:
    math::Vector2<unsigned int> m_size;
};

} // namespace qel::filtering::smoothing
