#pragma once

#include "Core/private/Helper/convertVecFunc.h"

#include <qel/ImageModel.h>

namespace qel {

/// Shows an image in another voxel type: rows are converted as they pass. All else is the wrapped image's.
///
/// A complex type on either side has no conversion: rows are then refused. Two equal types hand rows through.
class ImageModelProxy : public ImageModel
{
public:
    /// `model` is not owned, and must outlive the proxy.
    ImageModelProxy(ImageModel* model, VoxelTypes shown);

    ImageModel* getWrapped() const;

    unsigned long getNumOf(Components const& component) const override;
    VoxelTypes getVoxelType() const override;
    bool setOriginOf(Components const& component, double origin) override;
    double getOriginOf(Components const& component) const override;
    bool setSpacingOf(Components const& component, double spacing) override;
    double getSpacingOf(Components const& component) const override;
    bool setSpatialUnitName(String const& name) override;
    String getSpatialUnitName() const override;
    bool setTemporalUnitName(String const& name) override;
    String getTemporalUnitName() const override;
    Interpretations getInterpretation() const override;
    bool setInterpretation(Interpretations const& interpretation) override;
    bool getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans, unsigned long& timeSeries,
                         unsigned long& spectralSeries) override;
    bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override;
    bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override;
    /// Always false: there is no voxel of the shown type in memory.
    bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                  unsigned long plan, unsigned long time, unsigned long spectral) const override;
    bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                       unsigned long rowIndex, unsigned long plan, unsigned long time,
                       unsigned long spectral) const override;
    /// Gives the wrapped image this type; the shown one stays.
    bool reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override;

private:
    void lookAtWrapped();

    ImageModel* wrapped;
    VoxelTypes wrappedType;
    unsigned long wrappedSize;
    VoxelTypes shownType;
    unsigned long shownSize;
    helper::VoxelConversion toShown;
    helper::VoxelConversion toWrapped;
};

} // namespace qel
