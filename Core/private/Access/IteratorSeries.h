#pragma once

#include "Core/private/Access/BlockCursor.h"
#include "Core/private/Access/Rows.h"

#include <vector>

namespace qel::access {

/// The voxels of all spectral series at one position, over a block of a single series.
template <class View, int N> class IteratorSpectralInput : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    explicit IteratorSpectralInput(boost::shared_ptr<View const> view, OverlapBorder const& overlap = OverlapBorder());

    void init(Block2d const& block);
    void init(Block3d const& block);

    unsigned long size() const { return m_voxels.size(); }
    VoxelType const* pointer(unsigned long series) const { return m_voxels[series]; }
    VoxelType const& operator[](unsigned long series) const { return *m_voxels[series]; }
    void operator++()
    {
        if (m_column < m_lastColumn) {
            m_column += N;
            for (VoxelType const*& voxel : m_voxels)
                voxel += N;
        } else {
            nextRow();
        }
    }

    VoxelType const* rowData(unsigned long series) const { return m_cache->getRow(series).data(); }
    void nextRow();

private:
    void load();

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<RowCacheRead<View, typename View::Allocator>> m_cache;
    std::vector<VoxelType const*> m_voxels;
};

/// The voxels of all time series at one position, to be written.
template <class View, int N> class IteratorTemporalOutput : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    IteratorTemporalOutput(boost::shared_ptr<View> view, bool readBeforeWrite,
                           OverlapBorder const& overlap = OverlapBorder());

    void init(Block2d const& block);
    void init(Block3d const& block);

    unsigned long size() const { return m_voxels.size(); }
    VoxelType* pointer(unsigned long series) const { return m_voxels[series]; }
    VoxelType& operator[](unsigned long series) const { return *m_voxels[series]; }
    void operator++()
    {
        if (m_column < m_lastColumn) {
            m_column += N;
            for (VoxelType*& voxel : m_voxels)
                voxel += N;
        } else {
            nextRow();
        }
    }

    VoxelType* rowData(unsigned long series) const { return m_cache->getRow(series).data(); }
    void nextRow();

private:
    void load();

    boost::shared_ptr<View> m_view;
    boost::shared_ptr<RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    bool m_readBeforeWrite;
    OverlapBorder m_overlap;
    std::vector<VoxelType*> m_voxels;
};

} // namespace qel::access

// Units take the compiled form; only steps within a row are inlined.
#define QEL_SERIES_ITERATOR_TEMPLATES(Prefix, View, N)                                                                 \
    Prefix template class qel::access::IteratorSpectralInput<View, N>;                                                 \
    Prefix template class qel::access::IteratorTemporalOutput<View, N>;

#define QEL_EXTERN_SERIES_ITERATOR(T) QEL_SERIES_ITERATOR_TEMPLATES(extern, qel::access::View<T>, 1)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_SERIES_ITERATOR)
#undef QEL_EXTERN_SERIES_ITERATOR
