#pragma once

#include "Core/private/Access/BlockCursor.h"
#include "Core/private/Access/NeighborhoodShapes.h"
#include "Core/private/Access/Rows.h"

namespace qel::access {

/// Rows that a sequential scan reads and writes: what it computes at a voxel is seen at the voxels that follow.
///
/// The row (2D) or plan (3D) before the current one in scan order is kept beside it. Each is wider than the block by a
/// voxel on each side; only the voxels of the block itself go back to the image. A stale copy of what a neighbouring
/// block owns would undo that block's progress.
template <class View, int N> class ScannedRows : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    ScannedRows(boost::shared_ptr<View> view, OverlapBorder const& overlap);

    void init(Block2d const& block, IteratorDirection direction);

    /// The row at `y` steps from the current one, which is 0 or one step back in scan order. Its voxel 0 is the first
    /// column of the block; one more voxel can be read on each side.
    VoxelType* rowAt(long y, long = 0) const { return m_cache->getRow(y == 0 ? m_current : 1 - m_current).data() + 1; }

protected:
    bool toNextRow();

private:
    using Row = OuputRow<View, typename View::Allocator>;

    void fetch(unsigned long slot, long row);
    void write(unsigned long slot);

    boost::shared_ptr<View> m_view;
    boost::shared_ptr<RowCacheReadWrite<View, typename View::Allocator>> m_cache;
    OverlapBorder m_overlap;
    typename Row::SafeBox m_safeBox{};
    unsigned long m_current = 0; // the slot of the current row
};

template <class View, int N> class ScannedPlans : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    ScannedPlans(boost::shared_ptr<View> view, OverlapBorder const& overlap);

    void init(Block3d const& block, IteratorDirection direction);

    VoxelType* rowAt(long y, long z) const
    {
        auto& plan = m_cache->getPlan(z == 0 ? m_current : 1 - m_current);
        return plan.getRow(static_cast<unsigned long>(m_row + y + 1)).data() + 1;
    }

protected:
    bool toNextRow();

private:
    using Row = OuputRow<View, typename View::Allocator>;

    void fetch(unsigned long slot, long plan);
    void write(unsigned long slot);

    boost::shared_ptr<View> m_view;
    boost::shared_ptr<PlanCacheReadWrite<View, typename View::Allocator>> m_cache;
    OverlapBorder m_overlap;
    typename Row::SafeBox m_safeBox{};
    unsigned long m_current = 0;
};

/// The voxels of a shape that the scan has already visited, and the centre: the last pointer.
template <class Rows, class Shape> class IteratorHalfNeighborhood : public Rows
{
public:
    using typename Rows::VoxelType;
    static constexpr int size = static_cast<int>(Shape::steps.size());
    static constexpr int centre = size - 1;

    using Rows::Rows;

    template <class B> void init(B const& block, IteratorDirection direction)
    {
        Rows::init(block, direction);
        point();
    }

    VoxelType* pointer(int index) const { return m_pointers[index]; }
    VoxelType const& operator[](int index) const { return *m_pointers[index]; }
    VoxelType& operator*() const { return *m_pointers[centre]; }

    void operator++()
    {
        bool const forward = this->m_direction == Forward;
        if (forward ? this->m_column >= this->m_lastColumn : this->m_column <= 0) {
            nextRow();
            return;
        }
        long const stride = forward ? 1 : -1;
        this->m_column += stride;
        for (VoxelType*& voxel : m_pointers)
            voxel += stride;
    }

    void nextRow()
    {
        if (this->toNextRow())
            point();
    }

private:
    void point()
    {
        long const sign = this->m_direction == Forward ? 1 : -1;
        for (int index = 0; index < size; ++index) {
            Step const step = Shape::steps[index];
            m_pointers[index] = this->rowAt(sign * step.y, sign * step.z) + this->m_column + sign * step.x;
        }
    }

    VoxelType* m_pointers[size];
};

template <class View, int N = 1>
using IteratorHalfBiDirNeighborhood2D_4_Output =
    IteratorHalfNeighborhood<ScannedRows<View, N>, HalfBiDirNeighborhood2D_4_Output_Tag>;
template <class View, int N = 1>
using IteratorHalfBiDirNeighborhood2D_8_Output =
    IteratorHalfNeighborhood<ScannedRows<View, N>, HalfBiDirNeighborhood2D_8_Output_Tag>;
template <class View, int N = 1>
using IteratorHalfBiDirNeighborhood3D_6_Output =
    IteratorHalfNeighborhood<ScannedPlans<View, N>, HalfBiDirNeighborhood3D_6_Output_Tag>;
template <class View, int N = 1>
using IteratorHalfBiDirNeighborhood3D_18_Output =
    IteratorHalfNeighborhood<ScannedPlans<View, N>, HalfBiDirNeighborhood3D_18_Output_Tag>;
template <class View, int N = 1>
using IteratorHalfBiDirNeighborhood3D_26_Output =
    IteratorHalfNeighborhood<ScannedPlans<View, N>, HalfBiDirNeighborhood3D_26_Output_Tag>;

} // namespace qel::access

// Units take the compiled form; only steps within a row are inlined.
#define QEL_HALF_NEIGHBORHOOD_TEMPLATES(Prefix, View, N)                                                               \
    Prefix template class qel::access::ScannedRows<View, N>;                                                           \
    Prefix template class qel::access::ScannedPlans<View, N>;

#define QEL_EXTERN_HALF_NEIGHBORHOOD(T) QEL_HALF_NEIGHBORHOOD_TEMPLATES(extern, qel::access::View<T>, 1)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_HALF_NEIGHBORHOOD)
#undef QEL_EXTERN_HALF_NEIGHBORHOOD
