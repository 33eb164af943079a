#pragma once

#include "Tools/private/QelImage/QelRawImageCalibration.h"

#include <qel/Components.h>
#include <qel/Interpretations.h>
#include <qel/VoxelTypes.h>

#include <array>
#include <iosfwd>
#include <memory>

namespace qel {

class ImageModel;

namespace tools::details {

/// The header of a raw image file. Its axes come in an order of their own: columns, rows, spectral series, plans, time
/// series.
class QelRawImageHeader
{
public:
    QelRawImageHeader();
    virtual ~QelRawImageHeader();

    /// Bytes in a file of this version: 326, and 0 for version 0.
    static unsigned int writeSize(unsigned int version);

    /// Takes over all that the header says about an image.
    void updateFromBaseImage(ImageModel const* image);

    /// Both leave failures in the state of the stream. A version of 0 throws RuntimeError.
    void write(std::ostream& stream, ImageModel const* image, unsigned int version);
    void read(std::istream& stream, unsigned int version);

    VoxelTypes getVoxelType() const { return static_cast<VoxelTypes>(voxelType); }
    Interpretations getInterpretation() const;
    unsigned int getSizeOf(Components component) const;
    QelRawImageCalibration const& getCalibrationOf(Components component) const;

private:
    static constexpr unsigned int NUM_OF_AXES = 5;

    unsigned int voxelType;
    bool isBinary;
    bool isLabel;
    std::array<unsigned int, NUM_OF_AXES> sizes;                                   // in the order of the file
    std::array<std::unique_ptr<QelRawImageCalibration>, NUM_OF_AXES> calibrations; // in the order of the file
};

} // namespace tools::details
} // namespace qel
