#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/Kernel/OffsetCollections.h"

namespace qel::access {

namespace {

void extremaOf(std::vector<kernel::Offset2D> const& window, Step& lowest, Step& highest)
{
    kernel::computeExtrema(window, lowest.x, highest.x, lowest.y, highest.y);
}

void extremaOf(std::vector<kernel::Offset3D> const& window, Step& lowest, Step& highest)
{
    kernel::computeExtrema(window, lowest.x, highest.x, lowest.y, highest.y, lowest.z, highest.z);
}

kernel::Offset2D oneColumnToTheLeft(kernel::Offset2D const&) { return {-1, 0}; }
kernel::Offset3D oneColumnToTheLeft(kernel::Offset3D const&) { return {-1, 0, 0}; }

} // namespace

template <class Offset>
SlidingOffsets<Offset>::SlidingOffsets(std::vector<Offset> const& window)
    : m_all(window)
    , m_entering(window)
    , m_leaving(window)
    , m_lowest{0, 0, 0}
    , m_highest{0, 0, 0}
{
    if (window.empty())
        return;
    extremaOf(window, m_lowest, m_highest);
    --m_lowest.x;
    kernel::shift(m_leaving, oneColumnToTheLeft(window.front()));
    kernel::commonElementsDeletion(m_leaving, m_entering);
}

template class SlidingOffsets<kernel::Offset2D>;
template class SlidingOffsets<kernel::Offset3D>;

template <class Rows, class Offset>
SlidingWindow<Rows, Offset>::SlidingWindow(boost::shared_ptr<typename Rows::ViewType const> view,
                                           boost::shared_ptr<SlidingOffsets<Offset> const> offsets)
    : Rows(view, offsets->lowest(), offsets->highest())
    , m_offsets(offsets)
    , m_entering(offsets->entering().size())
    , m_leaving(offsets->leaving().size())
{}

template <class Rows, class Offset> void SlidingWindow<Rows, Offset>::point()
{
    auto const pointAt = [this](std::vector<Offset> const& offsets, std::vector<VoxelType const*>& pointers) {
        for (unsigned long index = 0; index < offsets.size(); ++index)
            pointers[index] = this->rowAt(offsets[index].y, planOf(offsets[index])) + offsets[index].x;
    };
    pointAt(m_offsets->entering(), m_entering);
    pointAt(m_offsets->leaving(), m_leaving);
}

} // namespace qel::access

#define QEL_INSTANTIATE(T) QEL_SLIDING_WINDOW_TEMPLATES(, T)
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE
