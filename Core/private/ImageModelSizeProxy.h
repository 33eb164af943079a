#pragma once

#include <qel/ImageModel.h>

#include <vector>

namespace qel {

/// Shows a box of an image. The box has a fixed shape: `reserve` and the setters return false. Origins are those of the
/// whole image, not shifted to the box.
class ImageModelSizeProxy : public ImageModel
{
public:
    /// Offset and size of the box on each axis. `model` is not owned, and must outlive the proxy.
    ImageModelSizeProxy(ImageModel* model, unsigned long offset0, unsigned long size0, unsigned long offset1,
                        unsigned long size1, unsigned long offset2, unsigned long size2, unsigned long offset3,
                        unsigned long size3, unsigned long offset4, unsigned long size4);

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
    bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                  unsigned long plan, unsigned long time, unsigned long spectral) const override;
    bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                       unsigned long rowIndex, unsigned long plan, unsigned long time,
                       unsigned long spectral) const override;
    bool reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override;

protected:
    /// Whether a row is in the box.
    bool holds(unsigned long numOfVoxels, unsigned long column, unsigned long row, unsigned long plan,
               unsigned long time, unsigned long spectral) const;

private:
    ImageModel* wrapped;
    std::vector<unsigned long> offsets;
    std::vector<unsigned long> sizes;
};

} // namespace qel
