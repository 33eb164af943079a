#pragma once

#include "Core/private/Access/BlockCursor.h"
#include "Core/private/Access/Rows.h"

namespace qel::access {

/// Visits the voxels of a block in row order, one by one or in packets of `N`.
///
/// Row kernels take whole rows: `for (; !in.atEnd(); in.nextRow()) kernel(in.rowData(), in.rowLength())`.
template <class View, int N> class IteratorPixelInput : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    explicit IteratorPixelInput(boost::shared_ptr<View const> view, OverlapBorder const& overlap = OverlapBorder());

    /// With `padToPacket`, rows are read up to a whole number of packets; what lies beyond the block comes from the
    /// image or its border condition.
    void init(Block2d const& block, bool padToPacket = false);
    void init(Block3d const& block, bool padToPacket = false);

    VoxelType const& operator*() const { return *m_voxel; }
    VoxelType const* pointer() const { return m_voxel; }
    void operator++()
    {
        if (m_column < m_lastColumn) {
            m_voxel += N;
            m_column += N;
        } else {
            nextRow();
        }
    }

    /// The current row from its first voxel on, and its length with padding.
    VoxelType const* rowData() const { return m_cache->getRow(0).data(); }
    unsigned long paddedRowLength() const { return m_cache->getRow(0).size(); }
    void nextRow();

private:
    void start(bool padToPacket);
    void load();

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<RowCacheRead<View, typename View::Allocator>> m_cache;
    VoxelType const* m_voxel = nullptr;
    unsigned long m_voxelsToRead = 0;
};

/// Writes the voxels of a block in row order. A row reaches the image when the cursor leaves it.
template <class View, int N> class IteratorPixelOutput : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    /// `readBeforeWrite` is for bodies that need the present voxels, or do not set every one.
    IteratorPixelOutput(boost::shared_ptr<View> view, bool readBeforeWrite,
                        OverlapBorder const& overlap = OverlapBorder());

    void init(Block2d const& block);
    void init(Block3d const& block);

    VoxelType& operator*() const { return *m_voxel; }
    VoxelType* pointer() const { return m_voxel; }
    void operator++()
    {
        if (m_column < m_lastColumn) {
            m_voxel += N;
            m_column += N;
        } else {
            nextRow();
        }
    }

    VoxelType* rowData() const { return m_cache->getRow(0).data(); }
    /// Hands the finished row back and takes the next one.
    void nextRow();

private:
    using Row = OuputRow<View, typename View::Allocator>;

    void load();

    boost::shared_ptr<View> m_view;
    boost::shared_ptr<RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    bool m_readBeforeWrite;
    OverlapBorder m_overlap;
    typename Row::SafeBox m_safeBox{};
    VoxelType* m_voxel = nullptr;
};

/// Visits the voxels of a block from the first to the last, or from the last to the first.
template <class View, int N> class IteratorPixelBiDir_Input : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    explicit IteratorPixelBiDir_Input(boost::shared_ptr<View const> view,
                                      OverlapBorder const& overlap = OverlapBorder());

    void init(Block2d const& block, IteratorDirection direction);
    void init(Block3d const& block, IteratorDirection direction);

    VoxelType const& operator*() const { return *m_voxel; }
    VoxelType const* pointer() const { return m_voxel; }
    void operator++()
    {
        bool const isLastOfRow = m_direction == Forward ? m_column >= m_lastColumn : m_column <= 0;
        if (isLastOfRow) {
            nextRow();
            return;
        }
        long const stride = m_direction == Forward ? 1 : -1;
        m_voxel += stride;
        m_column += stride;
    }

    /// The current row from its first column on, in either direction.
    VoxelType const* rowData() const { return m_cache->getRow(0).data(); }
    void nextRow();

private:
    void load();

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<RowCacheRead<View, typename View::Allocator>> m_cache;
    VoxelType const* m_voxel = nullptr;
};

} // namespace qel::access

// Units take the compiled form; only steps within a row are inlined.
#define QEL_PIXEL_ITERATOR_TEMPLATES(Prefix, View, N)                                                                  \
    Prefix template class qel::access::IteratorPixelInput<View, N>;                                                    \
    Prefix template class qel::access::IteratorPixelOutput<View, N>;                                                   \
    Prefix template class qel::access::IteratorPixelBiDir_Input<View, N>;

#define QEL_EXTERN_PIXEL_ITERATOR(T) QEL_PIXEL_ITERATOR_TEMPLATES(extern, qel::access::View<T>, 1)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_PIXEL_ITERATOR)
#undef QEL_EXTERN_PIXEL_ITERATOR
#define QEL_EXTERN_PIXEL_ITERATOR(T)                                                                                   \
    QEL_PIXEL_ITERATOR_TEMPLATES(extern, qel::access::PacketView<T>, qel::access::packetSizeOf<T>)
QEL_FOR_EACH_PACKET_TYPE(QEL_EXTERN_PIXEL_ITERATOR)
#undef QEL_EXTERN_PIXEL_ITERATOR
