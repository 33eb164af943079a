#pragma once

#include "Core/private/Access/OverlapBorder.h"
#include "Core/private/Access/RowPosition.h"
#include "Core/private/Access/View.h"

#include <qel/access/Block.h>

#include <vector>

namespace qel::access {

/// A run of voxels that is private to one task.
template <class View, class Alloc> class BaseRow
{
public:
    using VoxelType = typename View::VoxelType;

    explicit BaseRow(unsigned long slot)
        : m_slot(slot)
    {}

    unsigned long getSlot() const { return m_slot; }
    unsigned long size() const { return m_voxels.size(); }
    VoxelType* data() { return m_voxels.data(); }
    VoxelType const* data() const { return m_voxels.data(); }
    /// Keeps the first voxels and the memory; what is added is zero.
    void resize(unsigned long count) { m_voxels.resize(count); }

protected:
    unsigned long m_slot;
    std::vector<VoxelType, Alloc> m_voxels;
};

/// A copy of voxels of the image.
template <class View, class Alloc> class InputRow : public BaseRow<View, Alloc>
{
public:
    using BaseRow<View, Alloc>::BaseRow;
};

/// Voxels on their way to the image. They know where they belong.
template <class View, class Alloc> class OuputRow : public BaseRow<View, Alloc>
{
public:
    using VoxelType = typename View::VoxelType;

    OuputRow(unsigned long slot, View* view)
        : BaseRow<View, Alloc>(slot)
        , m_view(view)
    {}

    /// A deep copy.
    static boost::shared_ptr<OuputRow> New(OuputRow const& other);
    /// A copy of `count` voxels from `offset` on. Throws UnexpectedError where the row is shorter.
    static boost::shared_ptr<OuputRow> New(OuputRow const& other, unsigned long count, unsigned long offset);

    RowPosition const& getPosition() const { return m_position; }
    void setPosition(RowPosition const& position) { m_position = position; }

    /// Where a block may write at once: no other block reads there.
    struct SafeBox
    {
        long rowsBegin, rowsEnd, plansBegin, plansEnd, colsBegin, colsEnd;
    };
    static SafeBox safeBoxOf(Block const& block, OverlapBorder const& overlap, View const& view);

    /// Writes what lies in the image. With `deferMargins`, what lies outside the given box waits in the view.
    void writeRow(bool deferMargins, long rowsBegin, long rowsEnd, long plansBegin, long plansEnd, long colsBegin,
                  long colsEnd) const;
    /// Writes a row of the block; what a neighbouring block may still read waits in the view.
    void writeRow(Block const& block, OverlapBorder const& overlap) const;
    /// The same for a box that was made before.
    void writeRow(SafeBox const& box) const { write(true, box, 0, this->size()); }
    /// The same for `count` voxels from `offset` on: the rest of the row is only a copy of what its neighbours own.
    void writeRow(SafeBox const& box, unsigned long offset, unsigned long count) const
    {
        write(true, box, offset, count);
    }

private:
    void write(bool deferMargins, SafeBox const& box, unsigned long offset, unsigned long count) const;
    void defer(long first, long last) const;

    RowPosition m_position;
    View* m_view;
};

/// Rows by slot number. They grow to the longest request and keep their memory.
template <class View, class Row> class RowSlots
{
public:
    RowSlots(View* view, unsigned long slots)
        : m_view(view)
    {
        makeRows(slots);
    }

    unsigned long getNumOfRows() const { return m_rows.size(); }
    Row& getRow(unsigned long slot) const { return *m_rows[slot]; }
    void makeRows(unsigned long count);

protected:
    std::vector<boost::shared_ptr<Row>> m_rows;
    View* m_view;
};

/// Rows that are read. Coordinates relative to a block may be negative.
template <class View, class Alloc> class RowCacheRead : public RowSlots<View, InputRow<View, Alloc>>
{
public:
    using Row = InputRow<View, Alloc>;
    using RowSlots<View, Row>::RowSlots;

    Row& fetchRowInBlock(unsigned long slot, unsigned long count, Block const& block, long column, long row, long plan,
                         long timeSeries, long spectralSeries) const;
    Row& fetchRowInImage(unsigned long slot, unsigned long count, long column, long row, long plan, long timeSeries,
                         long spectralSeries) const;
    /// For cursors. Inlined, so that the position stays in registers: stored and loaded again, it would stall each row.
    [[gnu::always_inline]] Row& fetchRow(unsigned long slot, unsigned long count, RowPosition const& at) const
    {
        Row& target = this->getRow(slot);
        target.resize(count);
        this->m_view->read(target.data(), count, at);
        return target;
    }
};

/// Rows that are written.
template <class View, class Alloc> class RowCacheReadWrite : public RowSlots<View, OuputRow<View, Alloc>>
{
public:
    using Row = OuputRow<View, Alloc>;
    using RowSlots<View, Row>::RowSlots;

    /// The row with its present voxels.
    Row& fetchRowInBlock(unsigned long slot, unsigned long count, Block const& block, long column, long row, long plan,
                         long timeSeries, long spectralSeries) const;
    [[gnu::always_inline]] Row& fetchRow(unsigned long slot, unsigned long count, RowPosition const& at) const
    {
        Row& target = getRow(slot, count, at);
        this->m_view->read(target.data(), count, at);
        return target;
    }
    /// The row with whatever the earlier use of the slot left: for whoever sets every voxel.
    Row& getRowInBlock(unsigned long slot, unsigned long count, Block const& block, long column, long row, long plan,
                       long timeSeries, long spectralSeries) const;
    using RowSlots<View, Row>::getRow;
    [[gnu::always_inline]] Row& getRow(unsigned long slot, unsigned long count, RowPosition const& at) const
    {
        Row& target = this->getRow(slot);
        target.resize(count);
        target.setPosition(at);
        return target;
    }
};

/// The rows of one plan of a block: row i is the row `row + i` of the request. They are made when first asked for.
template <class RowCache, class View> class PlanOf : public RowCache
{
public:
    PlanOf(View* view, unsigned long slot)
        : RowCache(view, 0)
        , m_slot(slot)
    {}

    unsigned long getSlot() const { return m_slot; }
    /// How many rows the last request asked for; there may be more.
    unsigned long getRowCount() const { return m_rowCount; }
    void setRowCount(unsigned long count)
    {
        this->makeRows(count);
        m_rowCount = count;
    }

private:
    unsigned long m_slot;
    unsigned long m_rowCount = 0;
};
template <class View, class Alloc> using InputPlan = PlanOf<RowCacheRead<View, Alloc>, View>;
template <class View, class Alloc> using OutputPlan = PlanOf<RowCacheReadWrite<View, Alloc>, View>;

/// Plans by slot number.
template <class View, class Plan> class PlanSlots
{
public:
    PlanSlots(View* view, unsigned long slots);

    unsigned long getNumOfPlans() const { return m_plans.size(); }
    Plan& getPlan(unsigned long slot) const { return *m_plans[slot]; }
    Plan& fetchPlanInBlock(unsigned long slot, unsigned long cols, unsigned long rows, Block const& block, long column,
                           long row, long plan, long timeSeries, long spectralSeries) const;

protected:
    std::vector<boost::shared_ptr<Plan>> m_plans;
};

template <class View, class Alloc> class PlanCacheRead : public PlanSlots<View, InputPlan<View, Alloc>>
{
public:
    using Plan = InputPlan<View, Alloc>;
    using PlanSlots<View, Plan>::PlanSlots;
};

template <class View, class Alloc> class PlanCacheReadWrite : public PlanSlots<View, OutputPlan<View, Alloc>>
{
public:
    using Plan = OutputPlan<View, Alloc>;
    using PlanSlots<View, Plan>::PlanSlots;

    Plan& getPlanInBlock(unsigned long slot, unsigned long cols, unsigned long rows, Block const& block, long column,
                         long row, long plan, long timeSeries, long spectralSeries) const;
};

} // namespace qel::access

// Every unit but one takes the compiled form.
#define QEL_ROW_TEMPLATES(Prefix, T, Alloc)                                                                            \
    Prefix template class qel::access::OuputRow<qel::access::View<T, Alloc<T>>, Alloc<T>>;                             \
    Prefix template class qel::access::RowSlots<qel::access::View<T, Alloc<T>>,                                        \
                                                qel::access::InputRow<qel::access::View<T, Alloc<T>>, Alloc<T>>>;      \
    Prefix template class qel::access::RowSlots<qel::access::View<T, Alloc<T>>,                                        \
                                                qel::access::OuputRow<qel::access::View<T, Alloc<T>>, Alloc<T>>>;      \
    Prefix template class qel::access::RowCacheRead<qel::access::View<T, Alloc<T>>, Alloc<T>>;                         \
    Prefix template class qel::access::RowCacheReadWrite<qel::access::View<T, Alloc<T>>, Alloc<T>>;                    \
    Prefix template class qel::access::PlanSlots<qel::access::View<T, Alloc<T>>,                                       \
                                                 qel::access::InputPlan<qel::access::View<T, Alloc<T>>, Alloc<T>>>;    \
    Prefix template class qel::access::PlanSlots<qel::access::View<T, Alloc<T>>,                                       \
                                                 qel::access::OutputPlan<qel::access::View<T, Alloc<T>>, Alloc<T>>>;   \
    Prefix template class qel::access::PlanCacheReadWrite<qel::access::View<T, Alloc<T>>, Alloc<T>>;

#define QEL_EXTERN_ROWS(T) QEL_ROW_TEMPLATES(extern, T, std::allocator)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_ROWS)
#undef QEL_EXTERN_ROWS
#define QEL_EXTERN_ROWS(T) QEL_ROW_TEMPLATES(extern, T, qel::SimdVec::PacketAllocator)
QEL_FOR_EACH_PACKET_TYPE(QEL_EXTERN_ROWS)
#undef QEL_EXTERN_ROWS
