#include "Core/private/ImageModelSizeProxy.h"

namespace qel {

ImageModelSizeProxy::ImageModelSizeProxy(ImageModel* model, unsigned long offset0, unsigned long size0,
                                         unsigned long offset1, unsigned long size1, unsigned long offset2,
                                         unsigned long size2, unsigned long offset3, unsigned long size3,
                                         unsigned long offset4, unsigned long size4)
    : wrapped(model)
    , offsets{offset0, offset1, offset2, offset3, offset4}
    , sizes{size0, size1, size2, size3, size4}
{}

ImageModel* ImageModelSizeProxy::getWrapped() const { return wrapped; }

unsigned long ImageModelSizeProxy::getNumOf(Components const& component) const
{
    unsigned const axis = static_cast<unsigned>(component);
    return axis < sizes.size() ? sizes[axis] : 0;
}

VoxelTypes ImageModelSizeProxy::getVoxelType() const { return wrapped->getVoxelType(); }

bool ImageModelSizeProxy::setOriginOf(Components const&, double) { return false; }

double ImageModelSizeProxy::getOriginOf(Components const& component) const { return wrapped->getOriginOf(component); }

bool ImageModelSizeProxy::setSpacingOf(Components const&, double) { return false; }

double ImageModelSizeProxy::getSpacingOf(Components const& component) const { return wrapped->getSpacingOf(component); }

bool ImageModelSizeProxy::setSpatialUnitName(String const&) { return false; }

String ImageModelSizeProxy::getSpatialUnitName() const { return wrapped->getSpatialUnitName(); }

bool ImageModelSizeProxy::setTemporalUnitName(String const&) { return false; }

String ImageModelSizeProxy::getTemporalUnitName() const { return wrapped->getTemporalUnitName(); }

Interpretations ImageModelSizeProxy::getInterpretation() const { return wrapped->getInterpretation(); }

bool ImageModelSizeProxy::setInterpretation(Interpretations const&) { return false; }

bool ImageModelSizeProxy::getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans,
                                          unsigned long& timeSeries, unsigned long& spectralSeries)
{
    return wrapped->getPreferedSize(columns, rows, plans, timeSeries, spectralSeries);
}

bool ImageModelSizeProxy::holds(unsigned long numOfVoxels, unsigned long column, unsigned long row, unsigned long plan,
                                unsigned long time, unsigned long spectral) const
{
    return numOfVoxels <= sizes[COLUMNS] && column <= sizes[COLUMNS] - numOfVoxels && row < sizes[ROWS] &&
           plan < sizes[PLANS] && time < sizes[TIME_SERIES] && spectral < sizes[SPECTRAL_SERIES];
}

bool ImageModelSizeProxy::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                                    unsigned long row, unsigned long plan, unsigned long time,
                                    unsigned long spectral) const
{
    return holds(numOfVoxels, column, row, plan, time, spectral) &&
           wrapped->readRowAt(numOfVoxels, destination, column + offsets[COLUMNS], row + offsets[ROWS],
                              plan + offsets[PLANS], time + offsets[TIME_SERIES], spectral + offsets[SPECTRAL_SERIES]);
}

bool ImageModelSizeProxy::writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                                     unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral)
{
    return holds(numOfVoxels, column, row, plan, time, spectral) &&
           wrapped->writeRowAt(numOfVoxels, source, column + offsets[COLUMNS], row + offsets[ROWS],
                               plan + offsets[PLANS], time + offsets[TIME_SERIES], spectral + offsets[SPECTRAL_SERIES]);
}

bool ImageModelSizeProxy::getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column,
                                   unsigned long rowIndex, unsigned long plan, unsigned long time,
                                   unsigned long spectral) const
{
    return holds(numOfVoxels, column, rowIndex, plan, time, spectral) &&
           wrapped->getRowAt(numOfVoxels, row, column + offsets[COLUMNS], rowIndex + offsets[ROWS],
                             plan + offsets[PLANS], time + offsets[TIME_SERIES], spectral + offsets[SPECTRAL_SERIES]);
}

bool ImageModelSizeProxy::getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                                        unsigned long rowIndex, unsigned long plan, unsigned long time,
                                        unsigned long spectral) const
{
    return holds(numOfVoxels, column, rowIndex, plan, time, spectral) &&
           wrapped->getConstRowAt(numOfVoxels, row, column + offsets[COLUMNS], rowIndex + offsets[ROWS],
                                  plan + offsets[PLANS], time + offsets[TIME_SERIES],
                                  spectral + offsets[SPECTRAL_SERIES]);
}

bool ImageModelSizeProxy::reserve(VoxelTypes const&, unsigned long, unsigned long, unsigned long, unsigned long,
                                  unsigned long)
{
    return false;
}

} // namespace qel
