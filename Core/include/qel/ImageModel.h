#pragma once

#include <qel/Components.h>
#include <qel/Export.h>
#include <qel/Interpretations.h>
#include <qel/String.h>
#include <qel/VoxelTypes.h>

namespace qel {

/// The one interface through which the library sees an image. A host implements it over its own storage, or takes
/// `memory::InMemoryImage`.
///
/// An image has five axes, indexed by `Components`: columns, rows, plans, time series, spectral series. A row is a run
/// of voxels along the columns, addressed by the coordinates of its first voxel; all coordinates are voxel counts.
///
/// `readRowAt`, `getConstRowAt` and `getRowAt` are called from several threads at once, and `writeRowAt` from several
/// threads on different voxels: an implementation must allow that. `reserve` and the setters are called by one thread
/// while no other thread uses the image.
///
/// The operations report failure by their result. What they throw passes through the run to the host's caller.
class QEL_API ImageModel
{
public:
    virtual ~ImageModel();

    /// Size along the axis.
    virtual unsigned long getNumOf(Components const& component) const = 0;

    virtual VoxelTypes getVoxelType() const = 0;

    /// Sets the calibration origin of the axis. True if it was stored.
    virtual bool setOriginOf(Components const& component, double origin) = 0;
    virtual double getOriginOf(Components const& component) const = 0;

    /// Sets the voxel spacing of the axis. True if it was stored.
    virtual bool setSpacingOf(Components const& component, double spacing) = 0;
    virtual double getSpacingOf(Components const& component) const = 0;

    /// Sets the name of the unit of columns, rows and plans. True if it was stored.
    virtual bool setSpatialUnitName(String const& name) = 0;
    virtual String getSpatialUnitName() const = 0;

    /// Sets the name of the unit of the time series. True if it was stored.
    virtual bool setTemporalUnitName(String const& name) = 0;
    virtual String getTemporalUnitName() const = 0;

    virtual Interpretations getInterpretation() const = 0;
    /// True if it was stored.
    virtual bool setInterpretation(Interpretations const& interpretation) = 0;

    /// A block size that suits the image's storage, one count for each axis. False, and nothing written, if the image
    /// has no preference.
    virtual bool getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans,
                                 unsigned long& timeSeries, unsigned long& spectralSeries) = 0;

    /// Copies `numOfVoxels` voxels from the image to `destination`. False if the row is not (wholly) in the image.
    virtual bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                           unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) const = 0;

    /// Copies `numOfVoxels` voxels from `source` into the image. False if the row is not (wholly) in the image.
    virtual bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                            unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) = 0;

    /// Points `row` at `numOfVoxels` voxels inside the image, to be read and written. False, with `row` untouched, if
    /// the image cannot give such a pointer: that is no error, the caller then copies with `readRowAt` and
    /// `writeRowAt`.
    virtual bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                          unsigned long plan, unsigned long time, unsigned long spectral) const = 0;

    /// As `getRowAt`, to be read only.
    virtual bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                               unsigned long rowIndex, unsigned long plan, unsigned long time,
                               unsigned long spectral) const = 0;

    /// Gives the image this voxel type and these sizes. The old voxels may be lost. False if the image cannot.
    virtual bool reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                         unsigned long timeSeries, unsigned long spectralSeries) = 0;
};

} // namespace qel
