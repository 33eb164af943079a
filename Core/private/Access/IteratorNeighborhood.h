#pragma once

#include "Core/private/Access/BlockCursor.h"
#include "Core/private/Access/NeighborhoodShapes.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/Access/computeExtrema.h"

#include <qel/AlgoBorderInfluence.h>

#include <array>
#include <vector>

namespace qel::access {

/// Visits the voxels of a block with their neighbours, in row order.
///
/// Rows come through the view, as wide as the neighbourhood needs: at a block's edge they hold real voxels, at the
/// image's edge those of the border condition. Each row is read once a block, plus the reach.
///
/// Slots hold the rows (2D) or the plans (3D) from the lowest step to the highest; they rotate, and nothing is copied
/// between them. The two derived families differ in what a slot is.
template <class View, int N> class RotatingRows : public BlockCursor
{
public:
    using ViewType = View;
    using VoxelType = typename View::VoxelType;

    RotatingRows(boost::shared_ptr<View const> view, Step lowest, Step highest);

    void init(Block2d const& block);

    /// The row at `y` steps from the current one. Its voxel 0 is the first column of the block; the columns from the
    /// lowest step to the last column plus the highest step can be read.
    VoxelType const* rowAt(long y) const { return m_rows[static_cast<unsigned long>(y - m_lowest.y)] - m_lowest.x; }
    VoxelType const* rowAt(long y, long) const { return rowAt(y); }

protected:
    /// Turns to the next row. False at the end of the block.
    bool toNextRow();

private:
    void fetch(unsigned long index, long row);

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<RowCacheRead<View, typename View::Allocator>> m_cache;
    Step m_lowest;
    Step m_highest;
    std::vector<unsigned long> m_slots;   // of each step in y, from the lowest on
    std::vector<VoxelType const*> m_rows; // likewise
};

template <class View, int N> class RotatingPlans : public BlockCursor
{
public:
    using ViewType = View;
    using VoxelType = typename View::VoxelType;

    RotatingPlans(boost::shared_ptr<View const> view, Step lowest, Step highest);

    void init(Block3d const& block);

    /// The row at `y` rows and `z` plans from the current one.
    VoxelType const* rowAt(long y, long z) const
    {
        auto& plan = m_cache->getPlan(m_slots[static_cast<unsigned long>(z - m_lowest.z)]);
        return plan.getRow(static_cast<unsigned long>(m_row + y - m_lowest.y)).data() - m_lowest.x;
    }

protected:
    bool toNextRow();

private:
    void fetch(unsigned long index, long plan);

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<PlanCacheRead<View, typename View::Allocator>> m_cache;
    Step m_lowest;
    Step m_highest;
    std::vector<unsigned long> m_slots; // of each step in z, from the lowest on
};

/// Steps through a block with one pointer for each step of a neighbourhood, all moved together. `Neighborhood` is the
/// derived class, whose `point` sets `m_pointers` (an array or a vector) at the start of a row.
template <class Rows, class Neighborhood, class Pointers, int N> class PointedNeighborhood : public Rows
{
public:
    using typename Rows::VoxelType;

    template <class B> void init(B const& block)
    {
        Rows::init(block);
        point();
    }

    void operator++()
    {
        if (this->m_column < this->m_lastColumn) {
            this->m_column += N;
            for (VoxelType const*& voxel : m_pointers)
                voxel += N;
        } else {
            nextRow();
        }
    }

    void nextRow()
    {
        if (this->toNextRow())
            point();
    }

protected:
    using Rows::Rows;

    Pointers m_pointers;

private:
    void point() { static_cast<Neighborhood*>(this)->point(); }
};

/// A fixed shape: one pointer for each step, in the order of `Shape::steps`, all moved together.
template <class Rows, class Shape, int N>
class IteratorFixedNeighborhood
    : public PointedNeighborhood<Rows, IteratorFixedNeighborhood<Rows, Shape, N>,
                                 std::array<typename Rows::VoxelType const*, Shape::steps.size()>, N>
{
    using Base = PointedNeighborhood<Rows, IteratorFixedNeighborhood,
                                     std::array<typename Rows::VoxelType const*, Shape::steps.size()>, N>;
    friend Base;
    using Base::m_pointers;

public:
    using typename Rows::VoxelType;
    static constexpr int size = static_cast<int>(Shape::steps.size());
    static constexpr int centre = centreOf(Shape::steps);

    explicit IteratorFixedNeighborhood(boost::shared_ptr<typename Rows::ViewType const> view)
        : Base(view, Shape::steps.front().z < 0 ? Step{-1, -1, -1} : Step{-1, -1, 0},
               Shape::steps.front().z < 0 ? Step{1, 1, 1} : Step{1, 1, 0})
    {}

    VoxelType const* pointer(int index) const { return m_pointers[index]; }
    VoxelType const& operator[](int index) const { return *m_pointers[index]; }
    VoxelType const& operator*() const { return *m_pointers[centre]; }

private:
    void point()
    {
        for (int index = 0; index < size; ++index) {
            Step const step = Shape::steps[index];
            m_pointers[index] = this->rowAt(step.y, step.z) + step.x;
        }
    }
};

/// Any list of offsets: one pointer for each of them, in their order.
template <class Rows, class Offset, int N>
class IteratorGeneralNeighborhood : public PointedNeighborhood<Rows, IteratorGeneralNeighborhood<Rows, Offset, N>,
                                                               std::vector<typename Rows::VoxelType const*>, N>
{
    using Base =
        PointedNeighborhood<Rows, IteratorGeneralNeighborhood, std::vector<typename Rows::VoxelType const*>, N>;
    friend Base;
    using Base::m_pointers;

public:
    using typename Rows::VoxelType;

    IteratorGeneralNeighborhood(boost::shared_ptr<typename Rows::ViewType const> view,
                                std::vector<Offset> const& offsets);

    /// How far the offsets reach beyond the centre.
    AlgoBorderInfluence getAlgoBorderInfluence() const;

    unsigned long size() const { return m_pointers.size(); }
    VoxelType const* pointer(unsigned long index) const { return m_pointers[index]; }
    VoxelType const& operator[](unsigned long index) const { return *m_pointers[index]; }

private:
    void point();

    std::vector<Offset> m_offsets;
};

template <class View, int N>
using IteratorNeighborhood2D_4 = IteratorFixedNeighborhood<RotatingRows<View, N>, Neighborhood2D_4Tag, N>;
template <class View, int N>
using IteratorNeighborhood2D_8 = IteratorFixedNeighborhood<RotatingRows<View, N>, Neighborhood2D_8Tag, N>;
template <class View, int N>
using IteratorNeighborhood2D_Gen = IteratorGeneralNeighborhood<RotatingRows<View, N>, kernel::Offset2D, N>;
template <class View, int N>
using IteratorNeighborhood3D_6 = IteratorFixedNeighborhood<RotatingPlans<View, N>, Neighborhood3D_6Tag, N>;
template <class View, int N>
using IteratorNeighborhood3D_18 = IteratorFixedNeighborhood<RotatingPlans<View, N>, Neighborhood3D_18Tag, N>;
template <class View, int N>
using IteratorNeighborhood3D_26 = IteratorFixedNeighborhood<RotatingPlans<View, N>, Neighborhood3D_26Tag, N>;
template <class View, int N>
using IteratorNeighborhood3D_Gen = IteratorGeneralNeighborhood<RotatingPlans<View, N>, kernel::Offset3D, N>;

/// Two adjacent rows of a block, and the squares of 2 x 2 voxels in them, stepped by two voxels.
template <class View> class IteratorNeighborhood2D_Square4ByBlock : public BlockCursor
{
public:
    using VoxelType = typename View::VoxelType;

    explicit IteratorNeighborhood2D_Square4ByBlock(boost::shared_ptr<View const> view);

    /// The rows 0 and 1 of the block, `voxels` long each.
    void init(Block2d const& block, unsigned long voxels);
    /// The rows `row` and `row + 1`.
    void fetchRows(long row);

    VoxelType const& upperLeft() const { return m_upper[m_column]; }
    VoxelType const& upperRight() const { return m_upper[m_column + 1]; }
    VoxelType const& lowerLeft() const { return m_lower[m_column]; }
    VoxelType const& lowerRight() const { return m_lower[m_column + 1]; }
    VoxelType const* upperRow() const { return m_upper; }
    VoxelType const* lowerRow() const { return m_lower; }
    /// To the next square of the two rows; whoever uses it counts them.
    void operator++() { m_column += 2; }

private:
    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<RowCacheRead<View, typename View::Allocator>> m_cache;
    VoxelType const* m_upper = nullptr;
    VoxelType const* m_lower = nullptr;
    unsigned long m_voxels = 0;
};

} // namespace qel::access

// Units take the compiled form; only steps within a row are inlined.
#define QEL_NEIGHBORHOOD_TEMPLATES(Prefix, View, N)                                                                    \
    Prefix template class qel::access::RotatingRows<View, N>;                                                          \
    Prefix template class qel::access::RotatingPlans<View, N>;                                                         \
    Prefix template class qel::access::IteratorGeneralNeighborhood<qel::access::RotatingRows<View, N>,                 \
                                                                   qel::kernel::Offset2D, N>;                          \
    Prefix template class qel::access::IteratorGeneralNeighborhood<qel::access::RotatingPlans<View, N>,                \
                                                                   qel::kernel::Offset3D, N>;

#define QEL_EXTERN_NEIGHBORHOOD(T) QEL_NEIGHBORHOOD_TEMPLATES(extern, qel::access::View<T>, 1)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_NEIGHBORHOOD)
#undef QEL_EXTERN_NEIGHBORHOOD
#define QEL_EXTERN_NEIGHBORHOOD(T)                                                                                     \
    QEL_NEIGHBORHOOD_TEMPLATES(extern, qel::access::PacketView<T>, qel::access::packetSizeOf<T>)
QEL_FOR_EACH_PACKET_TYPE(QEL_EXTERN_NEIGHBORHOOD)
#undef QEL_EXTERN_NEIGHBORHOOD
