#pragma once

#include "Core/private/Access/IteratorSeries.h"

namespace qel::access {

template <class View, int N>
IteratorSpectralInput<View, N>::IteratorSpectralInput(boost::shared_ptr<View const> view, OverlapBorder const&)
    : m_view(view)
    , m_cache(view->createRowCacheRead(view->numOfSpectralSeries()))
    , m_voxels(view->numOfSpectralSeries())
{}

template <class View, int N> void IteratorSpectralInput<View, N>::init(Block2d const& block)
{
    setBlock(block, Forward, N);
    load();
}

template <class View, int N> void IteratorSpectralInput<View, N>::init(Block3d const& block)
{
    setBlock(block, Forward, N);
    load();
}

template <class View, int N> void IteratorSpectralInput<View, N>::load()
{
    for (unsigned long series = 0; series < size(); ++series)
        m_voxels[series] =
            m_cache->fetchRow(series, rowLength(), at(0, m_row, m_plan, 0, static_cast<long>(series))).data();
}

template <class View, int N> void IteratorSpectralInput<View, N>::nextRow()
{
    if (turn() != Turn::End)
        load();
}

template <class View, int N>
IteratorTemporalOutput<View, N>::IteratorTemporalOutput(boost::shared_ptr<View> view, bool readBeforeWrite,
                                                        OverlapBorder const& overlap)
    : m_view(view)
    , m_cache(view->createRowCacheReadWrite(view->numOfTimeSeries()))
    , m_readBeforeWrite(readBeforeWrite)
    , m_overlap(overlap)
    , m_voxels(view->numOfTimeSeries())
{}

template <class View, int N> void IteratorTemporalOutput<View, N>::init(Block2d const& block)
{
    setBlock(block, Forward, N);
    load();
}

template <class View, int N> void IteratorTemporalOutput<View, N>::init(Block3d const& block)
{
    setBlock(block, Forward, N);
    load();
}

template <class View, int N> void IteratorTemporalOutput<View, N>::load()
{
    for (unsigned long series = 0; series < size(); ++series) {
        long const time = static_cast<long>(series);
        m_voxels[series] = (m_readBeforeWrite ? m_cache->fetchRow(series, rowLength(), at(0, m_row, m_plan, time))
                                              : m_cache->getRow(series, rowLength(), at(0, m_row, m_plan, time)))
                               .data();
    }
}

template <class View, int N> void IteratorTemporalOutput<View, N>::nextRow()
{
    for (unsigned long series = 0; series < size(); ++series)
        m_cache->getRow(series).writeRow(*m_block, m_overlap);
    if (turn() != Turn::End)
        load();
}

} // namespace qel::access
