#include "Tools/private/QelImage/QelRawImage.h"

#include "Core/private/ClassicText.h"
#include "Core/private/Throw.h"
#include "Tools/private/QelImage/QelRawImageHeader.h"
#include "Tools/private/QelImage/binaryStream.h"

#include <qel/ImageModel.h>

#include <boost/filesystem.hpp>

#include <cerrno>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <system_error>

namespace qel::tools::details {

namespace fs = boost::filesystem;

namespace {

constexpr char MAGIC[] = "QELI";
constexpr unsigned int MAGIC_SIZE = 4;
constexpr unsigned int VERSION = 1;
constexpr Components AXES[] = {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES};

/// Calls visit(row, plan, time, spectral) for each row, in the order of the file. A row of no bytes is none.
template <class Visit> void forEachRow(QelRawImageHeader const& header, unsigned long rowSize, Visit const& visit)
{
    if (rowSize == 0)
        return;
    unsigned long const numOfRows = header.getSizeOf(ROWS);
    unsigned long const numOfPlans = header.getSizeOf(PLANS);
    unsigned long const numOfTimes = header.getSizeOf(TIME_SERIES);
    unsigned long const numOfSpectra = header.getSizeOf(SPECTRAL_SERIES);
    if (numOfRows == 0 || numOfPlans == 0 || numOfTimes == 0 || numOfSpectra == 0)
        return;
    for (unsigned long time = 0; time < numOfTimes; ++time)
        for (unsigned long plan = 0; plan < numOfPlans; ++plan)
            for (unsigned long spectral = 0; spectral < numOfSpectra; ++spectral)
                for (unsigned long row = 0; row < numOfRows; ++row)
                    visit(row, plan, time, spectral);
}

unsigned long rowSizeOf(QelRawImageHeader const& header)
{
    return header.getSizeOf(COLUMNS) * helper::getSizeOf(header.getVoxelType());
}

/// Whether `numOfBytes` are enough for the voxels that the header promises.
bool holdsVoxels(QelRawImageHeader const& header, unsigned long numOfBytes)
{
    for (Components const axis : AXES)
        if (header.getSizeOf(axis) == 0)
            return true;
    unsigned long needed = rowSizeOf(header);
    for (Components const axis : {ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES})
        if (__builtin_mul_overflow(needed, header.getSizeOf(axis), &needed))
            return false;
    return needed <= numOfBytes;
}

/// How many bytes follow the place where the stream stands; 0 where the stream cannot tell, as with a pipe.
unsigned long remainingBytes(std::istream& stream)
{
    std::streamoff const here = stream.tellg();
    stream.seekg(0, std::ios::end);
    std::streamoff const end = stream.tellg();
    stream.seekg(here);
    return stream && end > here ? static_cast<unsigned long>(end - here) : 0;
}

} // namespace

QelRawImage::QelRawImage()
    : magic(MAGIC)
    , version(VERSION)
    , headerSize(QelRawImageHeader::writeSize(VERSION))
    , header(std::make_unique<QelRawImageHeader>())
{}

QelRawImage::~QelRawImage() = default;

void QelRawImage::writeImage(ImageModel const* image, String const& pathText, bool overwrite,
                             unsigned int wantedVersion)
{
    if (wantedVersion != VERSION)
        QEL_THROW(RuntimeError, "Invalid version: " << wantedVersion << ".");
    fs::path const path(pathText.c_str());
    boost::system::error_code ignored; // where the status is unknown, opening the file tells why
    fs::file_status const status = fs::status(path, ignored);
    if (fs::exists(status)) {
        if (!overwrite)
            QEL_THROW(RuntimeError, "File exist: <" << path << ">. Set the overwrite parameter to true.");
        if (!fs::is_regular_file(status))
            QEL_THROW(RuntimeError, "<" << pathText << "> is not a regular file.");
    }
    auto const failToWrite = [&] { QEL_THROW(RuntimeError, "Unable to write to disk the image " << pathText); };
    // The format has 32 bits for a size. A file that lies about it would be worse than none.
    for (Components const axis : AXES)
        if (image->getNumOf(axis) > std::numeric_limits<unsigned int>::max())
            failToWrite();

    std::ofstream stream(path.c_str(), std::ios::binary | std::ios::trunc);
    if (!stream)
        QEL_THROW(RuntimeError, "Cannot create or open the file " << pathText);

    magic = MAGIC;
    version = wantedVersion;
    headerSize = QelRawImageHeader::writeSize(version);
    stream.write(magic.data(), MAGIC_SIZE);
    writeNumber(stream, version);
    writeNumber(stream, headerSize);
    if (!stream)
        failToWrite();
    header = std::make_unique<QelRawImageHeader>();
    header->write(stream, image, version);

    unsigned long const numOfColumns = header->getSizeOf(COLUMNS);
    unsigned long const rowSize = rowSizeOf(*header);
    std::unique_ptr<unsigned char[]> buffer; // only for an image that gives no rows
    forEachRow(*header, rowSize,
               [&](unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) {
                   unsigned char const* voxels = nullptr;
                   if (!image->getConstRowAt(numOfColumns, voxels, 0, row, plan, time, spectral)) {
                       if (!buffer)
                           buffer.reset(new unsigned char[rowSize]);
                       if (!image->readRowAt(numOfColumns, buffer.get(), 0, row, plan, time, spectral))
                           QEL_THROW(RuntimeError, "Unable to read the input image");
                       voxels = buffer.get();
                   }
                   stream.write(reinterpret_cast<char const*>(voxels), static_cast<std::streamsize>(rowSize));
                   if (!stream)
                       failToWrite();
               });
    // A full disk may show only when the last bytes leave the stream's buffer.
    stream.close();
    if (!stream)
        failToWrite();
}

void QelRawImage::readImage(String const& pathText, ImageModel* image)
{
    fs::path const path(pathText.c_str());
    errno = 0;
    std::ifstream stream(path.c_str(), std::ios::binary);
    int error = errno;
    boost::system::error_code ignored;
    bool const isDirectory = fs::is_directory(path, ignored); // the system opens one, and refuses to read it
    if (isDirectory)
        error = EISDIR;
    if (!stream || isDirectory)
        QEL_THROW(RuntimeError, "Cannot read the file: " << pathText << ".\t System error: "
                                                         << std::system_category().message(error));

    auto const checkRead = [&] {
        if (!stream)
            QEL_THROW(RuntimeError, "Unable to read from disk the image " << pathText);
    };
    magic.assign(MAGIC_SIZE, '\0');
    stream.read(magic.data(), MAGIC_SIZE);
    checkRead();
    if (magic != MAGIC)
        QEL_THROW(RuntimeError, "Invalid magic number: " << magic << ".");
    version = readNumber<unsigned int>(stream);
    checkRead();
    if (version != VERSION)
        QEL_THROW(RuntimeError, "Invalid version file: " << version << ".");
    headerSize = readNumber<unsigned int>(stream); // kept; the header is read field by field all the same
    header = std::make_unique<QelRawImageHeader>();
    header->read(stream, version);
    checkRead();
    // Before memory is taken on the word of the header.
    if (!holdsVoxels(*header, remainingBytes(stream)))
        QEL_THROW(RuntimeError, "Unable to read from disk the image " << pathText);

    VoxelTypes const type = header->getVoxelType();
    // An image that keeps another type than it was given would read the rows beyond their end.
    if (!image->reserve(type, header->getSizeOf(COLUMNS), header->getSizeOf(ROWS), header->getSizeOf(PLANS),
                        header->getSizeOf(TIME_SERIES), header->getSizeOf(SPECTRAL_SERIES)) ||
        image->getVoxelType() != type)
        QEL_THROW(RuntimeError, "Cannot allocate a memory image for the image " << pathText);
    image->setInterpretation(header->getInterpretation());
    for (Components const axis : AXES)
        image->setSpacingOf(axis, header->getCalibrationOf(axis).getSpacing());
    image->setSpatialUnitName(toString(header->getCalibrationOf(COLUMNS).getUnitName()));
    image->setTemporalUnitName(toString(header->getCalibrationOf(TIME_SERIES).getUnitName()));

    unsigned long const numOfColumns = header->getSizeOf(COLUMNS);
    unsigned long const rowSize = rowSizeOf(*header);
    std::unique_ptr<unsigned char[]> buffer;
    forEachRow(*header, rowSize,
               [&](unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) {
                   if (!buffer)
                       buffer.reset(new unsigned char[rowSize]);
                   stream.read(reinterpret_cast<char*>(buffer.get()), static_cast<std::streamsize>(rowSize));
                   checkRead();
                   image->writeRowAt(numOfColumns, buffer.get(), 0, row, plan, time, spectral);
               });
}

} // namespace qel::tools::details
