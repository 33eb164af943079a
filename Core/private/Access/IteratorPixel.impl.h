#pragma once

#include "Core/private/Access/IteratorPixel.h"

namespace qel::access {

template <class View, int N>
IteratorPixelInput<View, N>::IteratorPixelInput(boost::shared_ptr<View const> view, OverlapBorder const&)
    : m_view(view)
    , m_cache(view->createRowCacheRead(1))
{}

template <class View, int N> void IteratorPixelInput<View, N>::init(Block2d const& block, bool padToPacket)
{
    setBlock(block, Forward, N);
    start(padToPacket);
}

template <class View, int N> void IteratorPixelInput<View, N>::init(Block3d const& block, bool padToPacket)
{
    setBlock(block, Forward, N);
    start(padToPacket);
}

template <class View, int N> void IteratorPixelInput<View, N>::start(bool padToPacket)
{
    unsigned long const packets = (rowLength() + N - 1) / N;
    m_voxelsToRead = padToPacket ? packets * N : rowLength();
    load();
}

template <class View, int N> void IteratorPixelInput<View, N>::load()
{
    m_voxel = m_cache->fetchRow(0, m_voxelsToRead, at(0, m_row, m_plan)).data();
}

template <class View, int N> void IteratorPixelInput<View, N>::nextRow()
{
    if (turn() != Turn::End)
        load();
}

template <class View, int N>
IteratorPixelOutput<View, N>::IteratorPixelOutput(boost::shared_ptr<View> view, bool readBeforeWrite,
                                                  OverlapBorder const& overlap)
    : m_view(view)
    , m_cache(view->createRowCacheReadWrite(1))
    , m_readBeforeWrite(readBeforeWrite)
    , m_overlap(overlap)
{}

template <class View, int N> void IteratorPixelOutput<View, N>::init(Block2d const& block)
{
    setBlock(block, Forward, N);
    m_safeBox = Row::safeBoxOf(block, m_overlap, *m_view);
    load();
}

template <class View, int N> void IteratorPixelOutput<View, N>::init(Block3d const& block)
{
    setBlock(block, Forward, N);
    m_safeBox = Row::safeBoxOf(block, m_overlap, *m_view);
    load();
}

template <class View, int N> void IteratorPixelOutput<View, N>::load()
{
    m_voxel = m_readBeforeWrite ? m_cache->fetchRow(0, rowLength(), at(0, m_row, m_plan)).data()
                                : m_cache->getRow(0, rowLength(), at(0, m_row, m_plan)).data();
}

template <class View, int N> void IteratorPixelOutput<View, N>::nextRow()
{
    m_cache->getRow(0).writeRow(m_safeBox);
    if (turn() != Turn::End)
        load();
}

template <class View, int N>
IteratorPixelBiDir_Input<View, N>::IteratorPixelBiDir_Input(boost::shared_ptr<View const> view, OverlapBorder const&)
    : m_view(view)
    , m_cache(view->createRowCacheRead(1))
{}

template <class View, int N>
void IteratorPixelBiDir_Input<View, N>::init(Block2d const& block, IteratorDirection direction)
{
    setBlock(block, direction);
    load();
}

template <class View, int N>
void IteratorPixelBiDir_Input<View, N>::init(Block3d const& block, IteratorDirection direction)
{
    setBlock(block, direction);
    load();
}

template <class View, int N> void IteratorPixelBiDir_Input<View, N>::load()
{
    m_voxel = m_cache->fetchRow(0, rowLength(), at(0, m_row, m_plan)).data() + m_column;
}

template <class View, int N> void IteratorPixelBiDir_Input<View, N>::nextRow()
{
    if (turn() != Turn::End)
        load();
}

} // namespace qel::access
