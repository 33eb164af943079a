#include "Tools/private/QelImage/QelRawImageHeader.h"

#include "Core/private/ClassicText.h"
#include "Core/private/Throw.h"
#include "Tools/private/QelImage/binaryStream.h"

#include <qel/ImageModel.h>

#include <algorithm>

namespace qel::tools::details {

namespace {

/// The axes in the order of the file.
constexpr Components FILE_ORDER[] = {COLUMNS, ROWS, SPECTRAL_SERIES, PLANS, TIME_SERIES};

unsigned int placeInFile(Components component)
{
    return static_cast<unsigned int>(std::find(FILE_ORDER, FILE_ORDER + 4, component) - FILE_ORDER);
}

} // namespace

QelRawImageHeader::QelRawImageHeader()
    : voxelType(QEL_UINT8)
    , isBinary(false)
    , isLabel(false)
    , sizes{}
{
    for (auto& calibration : calibrations)
        calibration = std::make_unique<QelRawImageCalibration>();
}

QelRawImageHeader::~QelRawImageHeader() = default;

unsigned int QelRawImageHeader::writeSize(unsigned int version)
{
    // Voxel type, two flags, five sizes.
    return version == 0 ? 0 : NUM_OF_AXES * QelRawImageCalibration::writeSize(version) + 4 + 2 + NUM_OF_AXES * 4;
}

void QelRawImageHeader::updateFromBaseImage(ImageModel const* image)
{
    voxelType = static_cast<unsigned int>(image->getVoxelType());
    Interpretations const interpretation = image->getInterpretation();
    isBinary = interpretation == QEL_BINARY;
    isLabel = interpretation == QEL_LABEL;
    std::string const spatialUnit = toStdString(image->getSpatialUnitName());
    std::string const temporalUnit = toStdString(image->getTemporalUnitName());
    for (unsigned int i = 0; i < NUM_OF_AXES; ++i) {
        Components const axis = FILE_ORDER[i];
        sizes[i] = static_cast<unsigned int>(image->getNumOf(axis));
        calibrations[i]->resetClass(1, image->getSpacingOf(axis),
                                    axis == SPECTRAL_SERIES ? ""
                                    : axis == TIME_SERIES   ? temporalUnit
                                                            : spatialUnit);
    }
}

void QelRawImageHeader::write(std::ostream& stream, ImageModel const* image, unsigned int version)
{
    if (version == 0)
        QEL_THROW(RuntimeError, "Invalid version: 0.");
    updateFromBaseImage(image);
    writeNumber(stream, voxelType);
    writeNumber(stream, static_cast<unsigned char>(isBinary));
    writeNumber(stream, static_cast<unsigned char>(isLabel));
    for (unsigned int const size : sizes)
        writeNumber(stream, size);
    for (auto const& calibration : calibrations)
        calibration->write(stream, version);
}

void QelRawImageHeader::read(std::istream& stream, unsigned int version)
{
    if (version == 0)
        QEL_THROW(RuntimeError, "Invalid version: 0.");
    voxelType = readNumber<unsigned int>(stream);
    // Compared and not loaded as flags: a file may hold any byte.
    isBinary = readNumber<unsigned char>(stream) != 0;
    isLabel = readNumber<unsigned char>(stream) != 0;
    for (unsigned int& size : sizes)
        size = readNumber<unsigned int>(stream);
    for (auto& calibration : calibrations)
        calibration->read(stream, version);
}

Interpretations QelRawImageHeader::getInterpretation() const
{
    return isBinary ? QEL_BINARY : isLabel ? QEL_LABEL : QEL_VALUE;
}

unsigned int QelRawImageHeader::getSizeOf(Components component) const { return sizes[placeInFile(component)]; }

QelRawImageCalibration const& QelRawImageHeader::getCalibrationOf(Components component) const
{
    return *calibrations[placeInFile(component)];
}

} // namespace qel::tools::details
