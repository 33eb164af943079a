#include "Segmentation/private/Texture/runTextureFeatureExtraction.h"

#include <algorithm>

namespace qel::segmentation::details {

ChannelRows::ChannelRows(boost::shared_ptr<View> view, unsigned long numOfChannels, unsigned long numOfSpectralSeries,
                         access::Block const& block)
    : m_view(view)
    , m_row(0, view.get())
    , m_length(block.getNbCols())
    // Eight more, so that the rows of all channels do not share a few places in the cache.
    , m_stride((m_length + 7) / 8 * 8 + 8)
    , m_voxel(numOfChannels)
    , m_rows(numOfChannels * m_stride)
{
    unsigned long const series = block.timeSeriesBegin() * numOfSpectralSeries + block.spectralSeriesBegin();
    m_begin = {static_cast<long>(block.colsBegin()), static_cast<long>(block.rowsBegin()),
               static_cast<long>(block.plansBegin()), static_cast<long>(series * numOfChannels), 0};
    m_row.resize(m_length);
}

void ChannelRows::writeRow(unsigned long row, unsigned long plan)
{
    access::RowPosition position = m_begin;
    position.row += static_cast<long>(row);
    position.plan += static_cast<long>(plan);
    for (std::size_t channel = 0; channel < m_voxel.size(); ++channel, ++position.timeSeries) {
        std::copy_n(m_rows.data() + channel * m_stride, m_length, m_row.data());
        m_row.setPosition(position);
        m_row.writeRow(false, 0, 0, 0, 0, 0, 0);
    }
}

} // namespace qel::segmentation::details
