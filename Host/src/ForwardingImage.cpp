#include "ForwardingImage.h"

namespace host {

unsigned long ForwardingImage::getNumOf(qel::Components const& component) const { return m_image->getNumOf(component); }

qel::VoxelTypes ForwardingImage::getVoxelType() const { return m_image->getVoxelType(); }

bool ForwardingImage::setOriginOf(qel::Components const& component, double origin)
{
    return m_image->setOriginOf(component, origin);
}

double ForwardingImage::getOriginOf(qel::Components const& component) const { return m_image->getOriginOf(component); }

bool ForwardingImage::setSpacingOf(qel::Components const& component, double spacing)
{
    return m_image->setSpacingOf(component, spacing);
}

double ForwardingImage::getSpacingOf(qel::Components const& component) const
{
    return m_image->getSpacingOf(component);
}

bool ForwardingImage::setSpatialUnitName(qel::String const& name) { return m_image->setSpatialUnitName(name); }

qel::String ForwardingImage::getSpatialUnitName() const { return m_image->getSpatialUnitName(); }

bool ForwardingImage::setTemporalUnitName(qel::String const& name) { return m_image->setTemporalUnitName(name); }

qel::String ForwardingImage::getTemporalUnitName() const { return m_image->getTemporalUnitName(); }

qel::Interpretations ForwardingImage::getInterpretation() const { return m_image->getInterpretation(); }

bool ForwardingImage::setInterpretation(qel::Interpretations const& interpretation)
{
    return m_image->setInterpretation(interpretation);
}

bool ForwardingImage::getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans,
                                      unsigned long& timeSeries, unsigned long& spectralSeries)
{
    return m_image->getPreferedSize(columns, rows, plans, timeSeries, spectralSeries);
}

bool ForwardingImage::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                                unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) const
{
    return m_image->readRowAt(numOfVoxels, destination, column, row, plan, time, spectral);
}

bool ForwardingImage::writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                                 unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral)
{
    return m_image->writeRowAt(numOfVoxels, source, column, row, plan, time, spectral);
}

bool ForwardingImage::getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column,
                               unsigned long rowIndex, unsigned long plan, unsigned long time,
                               unsigned long spectral) const
{
    return m_image->getRowAt(numOfVoxels, row, column, rowIndex, plan, time, spectral);
}

bool ForwardingImage::getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                                    unsigned long rowIndex, unsigned long plan, unsigned long time,
                                    unsigned long spectral) const
{
    return m_image->getConstRowAt(numOfVoxels, row, column, rowIndex, plan, time, spectral);
}

bool ForwardingImage::reserve(qel::VoxelTypes const& type, unsigned long columns, unsigned long rows,
                              unsigned long plans, unsigned long timeSeries, unsigned long spectralSeries)
{
    return m_image->reserve(type, columns, rows, plans, timeSeries, spectralSeries);
}

} // namespace host
