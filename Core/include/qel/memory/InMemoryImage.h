#pragma once

#include <qel/ImageModel.h>

namespace qel::memory {

/// An image that owns its voxels as one block of memory. Columns vary fastest, then rows, plans, time series, spectral
/// series, with no padding.
///
/// A new image has type QEL_UINT8, all sizes, origins and spacings 0, empty unit names, interpretation QEL_VALUE and no
/// voxels; call `reserve` to give it some. A copy has voxels of its own.
class QEL_API InMemoryImage : public ImageModel
{
public:
    InMemoryImage();
    InMemoryImage(InMemoryImage const& other);
    InMemoryImage& operator=(InMemoryImage const& other);
    ~InMemoryImage() override;

    /// Resets sizes, origins and spacings to 0 and the interpretation to QEL_VALUE, and leaves the buffer as it is.
    void Init();

    /// The first voxel, or null before any `reserve`.
    unsigned char const* getInternalBuffer() const;
    unsigned char* getInternalBuffer();

    unsigned long getNumOf(Components const& component) const override;
    VoxelTypes getVoxelType() const override;

    /// This setter and those that follow store the value and return true; an axis beyond the five is refused.
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

    /// Returns false and writes nothing: any block suits.
    bool getPreferedSize(unsigned long& columns, unsigned long& rows, unsigned long& plans, unsigned long& timeSeries,
                         unsigned long& spectralSeries) override;

    /// Built on `getConstRowAt`, through the virtual table.
    bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column, unsigned long row,
                   unsigned long plan, unsigned long time, unsigned long spectral) const override;
    /// Built on `getRowAt`, through the virtual table.
    bool writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column, unsigned long row,
                    unsigned long plan, unsigned long time, unsigned long spectral) override;
    /// False, with `row` untouched, unless the whole row is inside the image. A derived class that overrides this one
    /// changes the other three row operations with it.
    bool getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                  unsigned long plan, unsigned long time, unsigned long spectral) const override;
    /// Built on `getRowAt`, through the virtual table.
    bool getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                       unsigned long rowIndex, unsigned long plan, unsigned long time,
                       unsigned long spectral) const override;

    /// Frees the old voxels, then allocates new ones without initialising them; the old voxels do not survive, also
    /// when the sizes are unchanged. A voxel type that is not known has voxels of 0 bytes.
    ///
    /// Returns false, with the image unchanged, when the number of bytes does not fit into 64 bits. Throws the
    /// language's allocation failure when memory is exhausted; the image is then empty.
    bool reserve(VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                 unsigned long timeSeries, unsigned long spectralSeries) override;

private:
    VoxelTypes voxelType;
    unsigned long sizes[5];
    double origins[5];
    double spacings[5];
    String spatialUnitName;
    String temporalUnitName;
    Interpretations interpretation;
    unsigned char* buffer;
    unsigned long voxelSize; // in bytes, of voxelType
    bool isLarge;            // more than caches hold
};

} // namespace qel::memory
