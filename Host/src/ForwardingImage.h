#pragma once

#include <qel/ImageModel.h>

namespace host {

/// An image that hands every operation on to another one: the base of images that change a few of them.
class ForwardingImage : public qel::ImageModel
{
public:
    explicit ForwardingImage(qel::ImageModel& image)
        : m_image(&image)
    {}

    unsigned long getNumOf(qel::Components const& component) const override;
    qel::VoxelTypes getVoxelType() const override;
    bool setOriginOf(qel::Components const& component, double origin) override;
    double getOriginOf(qel::Components const& component) const override;
    bool setSpacingOf(qel::Components const& component, double spacing) override;
    double getSpacingOf(qel::Components const& component) const override;
    bool setSpatialUnitName(qel::String const& name) override;
    qel::String getSpatialUnitName() const override;
    bool setTemporalUnitName(qel::String const& name) override;
    qel::String getTemporalUnitName() const override;
    qel::Interpretations getInterpretation() const override;
    bool setInterpretation(qel::Interpretations const& interpretation) override;
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
    bool reserve(qel::VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override;

protected:
    void forwardTo(qel::ImageModel& image) { m_image = &image; }

private:
    qel::ImageModel* m_image;
};

} // namespace host
