#pragma once

#include <qel/ImageModel.h>

#include <pybind11/numpy.h>

#include <array>
#include <string>

namespace binding {

namespace py = pybind11;

class MappedFile;

int const numOfAxes = 5;

/// Names of interpretations in Python.
char const* nameOf(qel::Interpretations interpretation);

/// The numpy type of a voxel type.
py::dtype dtypeOf(qel::VoxelTypes type);

/// The voxel type of a numpy type. False where there is none: other kinds, and other byte orders.
bool voxelTypeOf(py::dtype const& dtype, qel::VoxelTypes& type);

/// The voxels of a numpy array as an image: read and written where they are, whatever the strides.
///
/// Axes are counted from the last one: columns, rows, plans, time series, spectral series. An array that is given is
/// never resized. A new one is made by `reserve`, as a numpy array from the start, so that it is the result without a
/// copy. Only `reserve` and the constructors touch Python; they take the interpreter's lock where it is not held.
class NumpyImage : public qel::ImageModel
{
public:
    /// What the calibration of a new image is.
    struct Axis
    {
        unsigned long size = 1;
        long stride = 0; // bytes
        double origin = 0;
        double spacing = 1;
    };

    /// A new image of this type, which is empty until it is reserved; its array gets `numOfDimensions`, or more where
    /// a further axis is longer than 1.
    NumpyImage(qel::VoxelTypes type, int numOfDimensions);
    /// Over the memory of `array`, of one to five dimensions.
    NumpyImage(py::array array, qel::VoxelTypes type);

    py::array const& array() const { return m_array; }
    int numOfDimensions() const { return m_numOfDimensions; }
    bool isNew() const { return m_isNew; }

    /// Whether both have the very same voxels at the same coordinates.
    bool isSameMemoryAs(NumpyImage const& other) const;
    /// The bytes from the first one that voxels lie in to behind the last one.
    void bounds(unsigned char const*& begin, unsigned char const*& end) const;

    unsigned long getNumOf(qel::Components const& component) const override;
    qel::VoxelTypes getVoxelType() const override { return m_type; }
    bool setOriginOf(qel::Components const& component, double origin) override;
    double getOriginOf(qel::Components const& component) const override;
    bool setSpacingOf(qel::Components const& component, double spacing) override;
    double getSpacingOf(qel::Components const& component) const override;
    bool setSpatialUnitName(qel::String const& name) override;
    qel::String getSpatialUnitName() const override { return m_unit.c_str(); }
    bool setTemporalUnitName(qel::String const& name) override;
    qel::String getTemporalUnitName() const override { return m_timeUnit.c_str(); }
    qel::Interpretations getInterpretation() const override { return m_interpretation; }
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

    /// True where the interpretation was declared, and is no guess.
    bool isInterpreted = false;
    /// True where `reserve` is to take type and sizes, but no memory: for trying rules.
    bool isWithoutVoxels = false;

private:
    void takeLayout();
    // The first voxel of a row, or null where the row is not in the image.
    unsigned char* voxel(unsigned long numOfVoxels, unsigned long column, unsigned long row, unsigned long plan,
                         unsigned long time, unsigned long spectral) const;

    py::array m_array; // null before the first reserve
    unsigned char* m_data = nullptr;
    std::array<Axis, numOfAxes> m_axes;
    qel::VoxelTypes m_type;
    long m_voxelSize;
    int m_numOfDimensions;
    bool m_isNew;
    bool m_isDirect = false; // rows are contiguous and aligned
    bool m_isLarge = false;  // more than caches hold
    MappedFile* m_file = nullptr;
    std::string m_unit;
    std::string m_timeUnit;
    qel::Interpretations m_interpretation = qel::QEL_VALUE;
};

} // namespace binding
