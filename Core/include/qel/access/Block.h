#pragma once

#include <qel/Export.h>

namespace qel::access {

/// A box of voxels in the five components of an image.
///
/// All values are voxel counts or voxel coordinates. Every end is exclusive: a count is end minus begin.
class QEL_API Block
{
public:
    virtual ~Block();

    virtual unsigned long getNbRows() const = 0;
    virtual unsigned long rowsBegin() const = 0;
    virtual unsigned long rowsEnd() const = 0;
    virtual unsigned long getNbCols() const = 0;
    virtual unsigned long colsBegin() const = 0;
    virtual unsigned long colsEnd() const = 0;
    virtual unsigned long getNbPlans() const = 0;
    virtual unsigned long plansBegin() const = 0;
    virtual unsigned long plansEnd() const = 0;
    virtual unsigned long getNbTimeSeries() const = 0;
    virtual unsigned long timeSeriesBegin() const = 0;
    virtual unsigned long timeSeriesEnd() const = 0;
    virtual unsigned long getNbSpectralSeries() const = 0;
    virtual unsigned long spectralSeriesBegin() const = 0;
    virtual unsigned long spectralSeriesEnd() const = 0;

protected:
    Block() = default;
    Block(Block const&) = default;
    Block& operator=(Block const&) = default;
};

} // namespace qel::access
