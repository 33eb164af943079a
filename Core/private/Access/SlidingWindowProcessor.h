#pragma once

#include "Core/private/Access/IteratorNeighborhood.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <vector>

namespace qel::access {

/// What changes under a window of any shape when it moves by one column. No voxel type is in sight.
template <class Offset> class SlidingOffsets
{
public:
    explicit SlidingOffsets(std::vector<Offset> const& window);

    /// The window itself.
    std::vector<Offset> const& all() const { return m_all; }
    /// What the new window has and the old one had not, and the reverse, both seen from the new centre. They are
    /// equally long, and keep the order of the window. So two windows of which one is the other one shifted have lists
    /// that pair up.
    std::vector<Offset> const& entering() const { return m_entering; }
    std::vector<Offset> const& leaving() const { return m_leaving; }
    /// The least and the largest step on each axis, with the column that is left at the first move.
    Step const& lowest() const { return m_lowest; }
    Step const& highest() const { return m_highest; }

private:
    std::vector<Offset> m_all;
    std::vector<Offset> m_entering;
    std::vector<Offset> m_leaving;
    Step m_lowest;
    Step m_highest;
};

extern template class SlidingOffsets<kernel::Offset2D>;
extern template class SlidingOffsets<kernel::Offset3D>;

/// The voxels under the window as it visits a block in row order, and those that enter and leave it.
template <class Rows, class Offset> class SlidingWindow : public Rows
{
public:
    using VoxelType = typename Rows::VoxelType;

    SlidingWindow(boost::shared_ptr<typename Rows::ViewType const> view,
                  boost::shared_ptr<SlidingOffsets<Offset> const> offsets);

    template <class B> void init(B const& block)
    {
        Rows::init(block);
        point();
    }

    /// Moves by one column and says true, or turns to the begin of the next row.
    bool moveAlongRow()
    {
        if (this->m_column >= this->m_lastColumn) {
            if (this->toNextRow())
                point();
            return false;
        }
        ++this->m_column;
        for (VoxelType const*& voxel : m_entering)
            ++voxel;
        for (VoxelType const*& voxel : m_leaving)
            ++voxel;
        return true;
    }

    /// Calls `visit(voxel pointer)` for the whole window; at the begin of a row only, for nothing else needs it.
    template <class Visit> void forEachAtBegin(Visit const& visit) const
    {
        for (Offset const& offset : m_offsets->all())
            visit(this->rowAt(offset.y, planOf(offset)) + offset.x);
    }

    VoxelType const* const* entering() const { return m_entering.data(); }
    VoxelType const* const* leaving() const { return m_leaving.data(); }
    unsigned long numOfMoving() const { return m_entering.size(); }

private:
    static long planOf(kernel::Offset2D const&) { return 0; }
    static long planOf(kernel::Offset3D const& offset) { return offset.z; }
    void point();

    boost::shared_ptr<SlidingOffsets<Offset> const> m_offsets;
    std::vector<VoxelType const*> m_entering;
    std::vector<VoxelType const*> m_leaving;
};

/// Keeps a summary of the voxels under a window of any shape, up to date as the window moves along the rows of a block:
/// a move costs the voxels that enter and leave. At the begin of each row the summary is made anew.
///
/// The summary is a computer, which is not owned:
/// - `clear()`: no voxel is under the window;
/// - `add(T const* voxel)`: one voxel more, in the order of the offsets;
/// - `update(T const* const* entering, T const* const* leaving, unsigned long count)`: the window has moved. Pairs come
///   in the order of the offsets, so that the k-th pairs of a window and of the same window shifted belong together;
/// - and whatever its result is, asked by whoever made it, for the voxel that the processor stands at.
///
/// One processor is configured, with its offsets, and copied for each block: a copy has rows of its own, and stands
/// nowhere until `init`. What it needs of the block is copied. A processor and its computer belong to one task.
template <class View, class Computer, class Rows, class Offset> class SlidingWindowProcessor
{
public:
    using VoxelType = typename View::VoxelType;
    using Window = SlidingWindow<Rows, Offset>;

    SlidingWindowProcessor() = default;
    SlidingWindowProcessor(boost::shared_ptr<View const> view, std::vector<Offset> const& offsets, Computer* computer)
        : SlidingWindowProcessor(view, boost::make_shared<SlidingOffsets<Offset>>(offsets), computer)
    {}
    /// For many processors over one window.
    SlidingWindowProcessor(boost::shared_ptr<View const> view, boost::shared_ptr<SlidingOffsets<Offset> const> offsets,
                           Computer* computer)
        : m_view(view)
        , m_offsets(offsets)
        , m_computer(computer)
    {}
    SlidingWindowProcessor(SlidingWindowProcessor const& other)
        : m_view(other.m_view)
        , m_offsets(other.m_offsets)
        , m_computer(other.m_computer)
    {}
    SlidingWindowProcessor& operator=(SlidingWindowProcessor const& other)
    {
        m_window.reset();
        m_view = other.m_view;
        m_offsets = other.m_offsets;
        m_computer = other.m_computer;
        return *this;
    }

    /// For a copy: each task has a computer of its own.
    void setComputer(Computer* computer) { m_computer = computer; }
    SlidingOffsets<Offset> const& offsets() const { return *m_offsets; }
    bool isInitialized() const { return m_window != nullptr; }

    /// Stands at the first voxel of the block, with the computer filled. Nothing is left of an earlier block.
    template <class B> void init(B const& block)
    {
        if (!m_window)
            m_window = std::make_unique<Window>(m_view, m_offsets);
        m_window->init(block);
        if (!m_window->atEnd())
            fill();
    }

    bool atEnd() const { return m_window->atEnd(); }
    /// Counted from the begin of the block.
    long column() const { return m_window->column(); }
    long row() const { return m_window->row(); }
    long plan() const { return m_window->plan(); }

    /// To the next voxel of the row, or to the first one of the next row.
    void operator++()
    {
        if (m_window->moveAlongRow())
            m_computer->update(m_window->entering(), m_window->leaving(), m_window->numOfMoving());
        else if (!m_window->atEnd())
            fill();
    }

private:
    void fill()
    {
        m_computer->clear();
        m_window->forEachAtBegin([this](VoxelType const* voxel) { m_computer->add(voxel); });
    }

    boost::shared_ptr<View const> m_view;
    boost::shared_ptr<SlidingOffsets<Offset> const> m_offsets;
    Computer* m_computer = nullptr;
    std::unique_ptr<Window> m_window; // none before init
};

template <class View, class Computer>
using SlidingWindowProcessor2D = SlidingWindowProcessor<View, Computer, RotatingRows<View, 1>, kernel::Offset2D>;
template <class View, class Computer>
using SlidingWindowProcessor3D = SlidingWindowProcessor<View, Computer, RotatingPlans<View, 1>, kernel::Offset3D>;

} // namespace qel::access

#define QEL_SLIDING_WINDOW_TEMPLATES(Prefix, T)                                                                        \
    Prefix template class qel::access::SlidingWindow<qel::access::RotatingRows<qel::access::View<T>, 1>,               \
                                                     qel::kernel::Offset2D>;                                           \
    Prefix template class qel::access::SlidingWindow<qel::access::RotatingPlans<qel::access::View<T>, 1>,              \
                                                     qel::kernel::Offset3D>;
#define QEL_EXTERN_SLIDING_WINDOW(T) QEL_SLIDING_WINDOW_TEMPLATES(extern, T)
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_SLIDING_WINDOW)
#undef QEL_EXTERN_SLIDING_WINDOW
