#pragma once

#include "Core/private/Access/BorderCondition.h"
#include "Core/private/Access/RowPosition.h"
#include "Core/private/SimdVec.h"
#include "Core/private/VoxelTypeOf.h"

#include <qel/Components.h>
#include <qel/ImageModel.h>
#include <qel/access/Region.h>

#include <boost/shared_ptr.hpp>
#include <tbb/concurrent_vector.h>

#include <memory>

namespace qel::access {

class FrozenImage;
template <class View, class Alloc> class OuputRow;
template <class View, class Alloc> class RowCacheRead;
template <class View, class Alloc> class RowCacheReadWrite;
template <class View, class Alloc> class PlanCacheRead;
template <class View, class Alloc> class PlanCacheReadWrite;

/// An image seen as voxels of type `T`, with what lies outside of it.
///
/// All reads and writes are copies between the image and rows that are private to a task. So input and output may be
/// one image, coordinates may lie outside, and tasks need no locks around voxels. Rows that a neighbouring block may
/// still read wait here until the loop over the blocks has ended.
template <class T, class Alloc = std::allocator<T>> class View
{
public:
    using VoxelType = T;
    using Allocator = Alloc;
    using Condition = boost::shared_ptr<BorderCondition<T>>;
    using Row = OuputRow<View, Alloc>;

    /// Sizes of the image, read once: tasks make no virtual calls for them. Stale after the image's `reserve`.
    struct DataInterfaceCache
    {
        unsigned long numOfRows = 0;
        unsigned long numOfCols = 0;
        unsigned long numOfPlans = 0;
        unsigned long numOfTimeSeries = 0;
        unsigned long numOfSpectralSeries = 0;

        void recompute(ImageModel const* image);
    };

    /// Throws UnexpectedError where the image's voxel type is not `T`.
    static boost::shared_ptr<View> New(ImageModel const* image, Condition condition);
    static boost::shared_ptr<View> New(ImageModel* image, Condition condition);

    VoxelTypes getVoxelType() const { return m_image->getVoxelType(); }
    unsigned long getNumOf(Components component) const;
    unsigned long numOfRows() const { return m_sizes.numOfRows; }
    unsigned long numOfCols() const { return m_sizes.numOfCols; }
    unsigned long numOfPlans() const { return m_sizes.numOfPlans; }
    unsigned long numOfTimeSeries() const { return m_sizes.numOfTimeSeries; }
    unsigned long numOfSpectralSeries() const { return m_sizes.numOfSpectralSeries; }

    /// Fills `row` with the voxels from these absolute coordinates on. What lies wholly in the image is one call into
    /// it; anything else comes through the border condition.
    void read(T* row, unsigned long count, RowPosition const& at) const
    {
        read(row, count, at.column, at.row, at.plan, at.timeSeries, at.spectralSeries);
    }
    void read(T* row, unsigned long count, long column, long rowIndex, long plan, long timeSeries,
              long spectralSeries) const;

    bool setOriginOf(Components component, double origin) { return m_image->setOriginOf(component, origin); }
    double getOriginOf(Components component) const { return m_image->getOriginOf(component); }
    bool setSpacingOf(Components component, double spacing) { return m_image->setSpacingOf(component, spacing); }
    double getSpacingOf(Components component) const { return m_image->getSpacingOf(component); }
    bool setSpatialUnitName(String const& name) { return m_image->setSpatialUnitName(name); }
    String getSpatialUnitName() const { return m_image->getSpatialUnitName(); }
    bool setTemporalUnitName(String const& name) { return m_image->setTemporalUnitName(name); }
    String getTemporalUnitName() const { return m_image->getTemporalUnitName(); }

    Condition const& getBorderCondition() const { return m_condition; }
    void setBorderCondition(Condition condition) { m_condition = condition; }
    ImageModel* getInterface() const { return m_image; }
    /// After the image's `reserve`. Throws UnexpectedError where its voxel type is not `T` any more.
    void recomputeCache();
    Region getLargestPossibleRegion() const;

    boost::shared_ptr<RowCacheRead<View, Alloc>> createRowCacheRead(unsigned long slots) const;
    boost::shared_ptr<RowCacheReadWrite<View, Alloc>> createRowCacheReadWrite(unsigned long slots);
    boost::shared_ptr<PlanCacheRead<View, Alloc>> createPlanCacheRead(unsigned long slots) const;
    boost::shared_ptr<PlanCacheReadWrite<View, Alloc>> createPlanCacheReadWrite(unsigned long slots);

    /// Callable from any thread.
    void temporizeRowWriting(boost::shared_ptr<Row> row) { m_temporized.push_back(row); }
    /// Not while a task may still append.
    void writeAllTemporizedRows();
    unsigned long getNumOfTemporizedRows() const { return m_temporized.size(); }

private:
    View(ImageModel* image, Condition condition);

    ImageModel* m_image;
    Condition m_condition;
    tbb::concurrent_vector<boost::shared_ptr<Row>> m_temporized;
    DataInterfaceCache m_sizes;
    boost::shared_ptr<FrozenImage const> m_frozen; // for the border condition
};

template <class T> using PacketView = View<T, SimdVec::PacketAllocator<T>>;
template <class T> inline constexpr int packetSizeOf = SimdVec::Traits<T, SimdVec::arch_128_tag>::packetSize;

/// Whether both views are on the same image, also where each sees it through an adapter of its own.
bool areOnOneImage(ImageModel const* first, ImageModel const* second);

} // namespace qel::access

#define QEL_EXTERN_VIEW(T) extern template class qel::access::View<T>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN_VIEW)
#undef QEL_EXTERN_VIEW
#define QEL_EXTERN_VIEW(T) extern template class qel::access::View<T, qel::SimdVec::PacketAllocator<T>>;
QEL_FOR_EACH_PACKET_TYPE(QEL_EXTERN_VIEW)
#undef QEL_EXTERN_VIEW
