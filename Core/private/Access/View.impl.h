#pragma once

#include "Core/private/Access/BorderGeometry.h"
#include "Core/private/Access/FrozenImage.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/Access/View.h"
#include "Core/private/Helper/ImageModelCheckTypeEquivalence.h"

#include <boost/make_shared.hpp>

namespace qel::access {

template <class T, class Alloc> void View<T, Alloc>::DataInterfaceCache::recompute(ImageModel const* image)
{
    numOfRows = image->getNumOf(ROWS);
    numOfPlans = image->getNumOf(PLANS);
    numOfCols = image->getNumOf(COLUMNS);
    numOfTimeSeries = image->getNumOf(TIME_SERIES);
    numOfSpectralSeries = image->getNumOf(SPECTRAL_SERIES);
}

template <class T, class Alloc>
View<T, Alloc>::View(ImageModel* image, Condition condition)
    : m_image(image)
    , m_condition(condition)
{
    recomputeCache();
}

template <class T, class Alloc> void View<T, Alloc>::recomputeCache()
{
    helper::ImageModelCheckTypeEquivalence<T>(*m_image);
    m_sizes.recompute(m_image);
    m_frozen = boost::make_shared<FrozenImage>(m_image, numOfCols(), numOfRows(), numOfPlans(), numOfTimeSeries(),
                                               numOfSpectralSeries(), VoxelTypeOf<T>::value);
}

template <class T, class Alloc>
boost::shared_ptr<View<T, Alloc>> View<T, Alloc>::New(ImageModel const* image, Condition condition)
{
    // A view for reading makes no call that changes the image; one class serves both directions.
    return New(const_cast<ImageModel*>(image), condition);
}

template <class T, class Alloc>
boost::shared_ptr<View<T, Alloc>> View<T, Alloc>::New(ImageModel* image, Condition condition)
{
    return boost::shared_ptr<View>(new View(image, condition));
}

template <class T, class Alloc>
void View<T, Alloc>::read(T* row, unsigned long count, long column, long rowIndex, long plan, long timeSeries,
                          long spectralSeries) const
{
    auto const isIn = [](long coordinate, unsigned long size) { return static_cast<unsigned long>(coordinate) < size; };
    bool const isInside = isIn(rowIndex, numOfRows()) && isIn(plan, numOfPlans()) &&
                          isIn(timeSeries, numOfTimeSeries()) && isIn(spectralSeries, numOfSpectralSeries()) &&
                          isIn(column, numOfCols()) && count <= numOfCols() - static_cast<unsigned long>(column);
    if (!isInside)
        m_condition->getData(m_frozen.get(), row, row + count, column, rowIndex, plan, timeSeries, spectralSeries);
    else if (count > 0 &&
             !m_image->readRowAt(count, reinterpret_cast<unsigned char*>(row), static_cast<unsigned long>(column),
                                 static_cast<unsigned long>(rowIndex), static_cast<unsigned long>(plan),
                                 static_cast<unsigned long>(timeSeries), static_cast<unsigned long>(spectralSeries)))
        throwReadError();
}

template <class T, class Alloc> unsigned long View<T, Alloc>::getNumOf(Components component) const
{
    switch (component) {
    case COLUMNS:
        return m_sizes.numOfCols;
    case ROWS:
        return m_sizes.numOfRows;
    case PLANS:
        return m_sizes.numOfPlans;
    case TIME_SERIES:
        return m_sizes.numOfTimeSeries;
    case SPECTRAL_SERIES:
        return m_sizes.numOfSpectralSeries;
    }
    return 0;
}

template <class T, class Alloc> Region View<T, Alloc>::getLargestPossibleRegion() const
{
    return Region(0, numOfRows(), 0, numOfCols(), 0, numOfPlans(), 0, numOfTimeSeries(), 0, numOfSpectralSeries());
}

// A cache for reading asks the view for nothing that changes it.
template <class T, class Alloc>
boost::shared_ptr<RowCacheRead<View<T, Alloc>, Alloc>> View<T, Alloc>::createRowCacheRead(unsigned long slots) const
{
    return boost::make_shared<RowCacheRead<View, Alloc>>(const_cast<View*>(this), slots);
}

template <class T, class Alloc>
boost::shared_ptr<RowCacheReadWrite<View<T, Alloc>, Alloc>> View<T, Alloc>::createRowCacheReadWrite(unsigned long slots)
{
    return boost::make_shared<RowCacheReadWrite<View, Alloc>>(this, slots);
}

template <class T, class Alloc>
boost::shared_ptr<PlanCacheRead<View<T, Alloc>, Alloc>> View<T, Alloc>::createPlanCacheRead(unsigned long slots) const
{
    return boost::make_shared<PlanCacheRead<View, Alloc>>(const_cast<View*>(this), slots);
}

template <class T, class Alloc>
boost::shared_ptr<PlanCacheReadWrite<View<T, Alloc>, Alloc>>
View<T, Alloc>::createPlanCacheReadWrite(unsigned long slots)
{
    return boost::make_shared<PlanCacheReadWrite<View, Alloc>>(this, slots);
}

template <class T, class Alloc> void View<T, Alloc>::writeAllTemporizedRows()
{
    for (auto const& row : m_temporized)
        row->writeRow(false, 0, 0, 0, 0, 0, 0);
    m_temporized.clear();
}

} // namespace qel::access
