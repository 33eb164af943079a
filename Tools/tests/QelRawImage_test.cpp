#include "Tools/private/QelImage/QelRawImage.h"

#include "Core/tests/Support/Support.h"
#include "Tools/private/QelImage/QelRawImageCalibration.h"
#include "Tools/private/QelImage/QelRawImageHeader.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace qel::test {
namespace {

using memory::InMemoryImage;
using tools::details::QelRawImage;
using tools::details::QelRawImageCalibration;
using tools::details::QelRawImageHeader;

constexpr unsigned long VOXELS_AT = 338;

template <class T> std::string bytesOf(T value)
{
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

/// What a raw image file says, in its own order of axes: columns, rows, spectral series, plans, time series.
struct FileContent
{
    std::string magic = "QELI";
    unsigned int version = 1;
    unsigned int headerSize = 326;
    unsigned int voxelType = QEL_UINT8;
    unsigned char isBinary = 0;
    unsigned char isLabel = 0;
    unsigned int sizes[5] = {1, 1, 1, 1, 1};
    unsigned int divisors[5] = {1, 1, 1, 1, 1};
    double values[5] = {1, 1, 1, 1, 1};
    std::string names[5];
    std::string voxels = std::string(1, '\x2a');

    std::string header() const
    {
        std::string bytes = magic + bytesOf(version) + bytesOf(headerSize) + bytesOf(voxelType);
        bytes += static_cast<char>(isBinary);
        bytes += static_cast<char>(isLabel);
        for (unsigned int const size : sizes)
            bytes += bytesOf(size);
        for (int i = 0; i < 5; ++i) {
            std::string name = names[i];
            name.resize(48, '\0');
            bytes += bytesOf(divisors[i]) + bytesOf(values[i]) + name;
        }
        return bytes;
    }
    std::string bytes() const { return header() + voxels; }
};

/// The file of an image, by the description of the format and by nothing of the library's writer.
template <class T> FileContent contentOf(Picture<T> const& picture)
{
    FileContent content;
    content.voxelType = VoxelTypeOf<T>::value;
    Shape const& shape = picture.shape;
    unsigned long const sizes[] = {shape.columns, shape.rows, shape.spectralSeries, shape.plans, shape.timeSeries};
    for (int i = 0; i < 5; ++i)
        content.sizes[i] = static_cast<unsigned int>(sizes[i]);
    content.voxels.clear();
    for (unsigned long t = 0; t < shape.timeSeries; ++t)
        for (unsigned long p = 0; p < shape.plans; ++p)
            for (unsigned long s = 0; s < shape.spectralSeries; ++s)
                for (unsigned long r = 0; r < shape.rows; ++r)
                    for (unsigned long c = 0; c < shape.columns; ++c)
                        content.voxels += bytesOf(picture.at(c, r, p, t, s));
    return content;
}

class QelRawImageTest : public testing::Test
{
protected:
    /// The path as messages show it.
    std::string quoted() const { return '"' + path + '"'; }
    void write(ImageModel const& image, bool overwrite = false, unsigned int version = 1)
    {
        QelRawImage().writeImage(&image, path.c_str(), overwrite, version);
    }
    void read(ImageModel& image) { QelRawImage().readImage(path.c_str(), &image); }

    TemporaryFolder folder;
    std::string path = folder / "image.qel";
};

TEST_F(QelRawImageTest, writesTheFileOfTheFormatForEveryVoxelType)
{
    forEachVoxelType([&]<class T>() {
        auto const picture = randomPicture<T>(Shape{5, 4, 3, 2, 3}, 41, true);
        InMemoryImage image = toImage(picture);
        FileContent expected = contentOf(picture);
        // In the order of Components.
        double const spacings[] = {0.25, -3, 0, 1e300, std::numeric_limits<double>::infinity()};
        int const placeInFile[] = {0, 1, 3, 4, 2};
        for (int i = 0; i < 5; ++i) {
            image.setSpacingOf(Components(i), spacings[i]);
            image.setOriginOf(Components(i), 5);
            expected.values[placeInFile[i]] = spacings[i];
        }
        image.setSpatialUnitName("mm");
        image.setTemporalUnitName("s");
        expected.names[0] = expected.names[1] = expected.names[3] = "mm";
        expected.names[4] = "s";
        write(image, true);
        EXPECT_TRUE(readFile(path) == expected.bytes());

        HostImage back;
        read(back);
        EXPECT_TRUE(samePicture(picture, back));
        image.Init(); // origins are lost
        for (int i = 0; i < 5; ++i)
            image.setSpacingOf(Components(i), spacings[i]);
        EXPECT_TRUE(sameCalibration(image, back));
        EXPECT_EQ(back.getInterpretation(), QEL_VALUE);
    });
}

TEST_F(QelRawImageTest, writesOneVoxelIn339Bytes)
{
    write(toImage(Picture<unsigned char>(Shape{}, 42)));
    EXPECT_EQ(readFile(path).size(), 339u);
}

TEST_F(QelRawImageTest, givesEveryVoxelBackAtItsOwnCoordinates)
{
    for (Shape const& shape : {Shape{7, 5, 4, 3, 2}, Shape{1, 1, 3, 1, 4}, Shape{3000, 2}, Shape{1, 9, 1, 5, 1}}) {
        auto const picture = randomPicture<unsigned short>(shape, 43);
        for (bool const rows : {false, true}) {
            HostImage image(picture);
            image.giveRows(rows);
            write(image, true);
            EXPECT_EQ(image.callsOf(READ_ROW) == 0, rows);
            InMemoryImage back;
            read(back);
            EXPECT_TRUE(samePicture(picture, back));
        }
    }
}

TEST_F(QelRawImageTest, keepsInterpretations)
{
    struct
    {
        Interpretations interpretation;
        std::string flags;
    } const cases[] = {
        {QEL_BINARY, std::string("\1\0", 2)}, {QEL_LABEL, std::string("\0\1", 2)}, {QEL_VALUE, std::string("\0\0", 2)}};
    for (auto const& each : cases) {
        InMemoryImage image = toImage(Picture<unsigned char>(Shape{}));
        image.setInterpretation(each.interpretation);
        write(image, true);
        EXPECT_EQ(readFile(path).substr(16, 2), each.flags);
        InMemoryImage back;
        read(back);
        EXPECT_EQ(back.getInterpretation(), each.interpretation);
    }
}

TEST_F(QelRawImageTest, readsAnyByteButZeroAsASetFlag)
{
    for (unsigned char const flag : {1, 2, 128, 255}) {
        FileContent content;
        InMemoryImage image;
        content.isLabel = flag;
        writeFile(path, content.bytes());
        read(image);
        EXPECT_EQ(image.getInterpretation(), QEL_LABEL);
        content.isBinary = flag;
        writeFile(path, content.bytes());
        read(image);
        EXPECT_EQ(image.getInterpretation(), QEL_BINARY);
    }
}

TEST_F(QelRawImageTest, storesASpacingAsAValueWithDivisorOne)
{
    InMemoryImage image = toImage(Picture<unsigned char>(Shape{}));
    image.setSpacingOf(ROWS, 0.25);
    write(image);
    EXPECT_EQ(readFile(path).substr(12 + 86, 12), bytesOf(1u) + bytesOf(0.25));
}

TEST_F(QelRawImageTest, dividesTheValueOfASpacing)
{
    FileContent content;
    content.divisors[0] = 4;
    content.divisors[1] = 3;
    content.divisors[2] = 8; // spectral series
    content.values[3] = 7;   // plans
    content.divisors[4] = 0; // time series
    writeFile(path, content.bytes());
    InMemoryImage image;
    image.setOriginOf(ROWS, 12);
    read(image);
    EXPECT_EQ(image.getSpacingOf(COLUMNS), 0.25);
    EXPECT_EQ(image.getSpacingOf(ROWS), 1.0 / 3.0);
    EXPECT_EQ(image.getSpacingOf(SPECTRAL_SERIES), 0.125);
    EXPECT_EQ(image.getSpacingOf(PLANS), 7);
    EXPECT_TRUE(std::isinf(image.getSpacingOf(TIME_SERIES)));
    EXPECT_EQ(image.getOriginOf(ROWS), 12);
}

TEST_F(QelRawImageTest, cutsUnitNamesTo48Characters)
{
    std::string const name(60, 'n');
    InMemoryImage image = toImage(Picture<unsigned char>(Shape{}));
    image.setSpatialUnitName(name.c_str());
    image.setTemporalUnitName(std::string(48, 't').c_str());
    write(image);
    InMemoryImage back;
    read(back);
    EXPECT_EQ(back.getSpatialUnitName(), String(std::string(48, 'n').c_str()));
    EXPECT_EQ(back.getTemporalUnitName(), String(std::string(48, 't').c_str()));
}

TEST_F(QelRawImageTest, readsTheUnitNamesOfTheFirstAndTheFifthCalibration)
{
    FileContent content;
    for (int i = 0; i < 5; ++i)
        content.names[i] = "unit " + std::to_string(i + 1);
    writeFile(path, content.bytes());
    InMemoryImage image;
    read(image);
    EXPECT_EQ(image.getSpatialUnitName(), String("unit 1"));
    EXPECT_EQ(image.getTemporalUnitName(), String("unit 5"));
}

TEST_F(QelRawImageTest, trustsItsOwnLayoutAndNotTheHeaderSize)
{
    for (unsigned int const size : {0u, 1u, 325u, 4294967295u}) {
        FileContent content;
        content.headerSize = size;
        writeFile(path, content.bytes());
        InMemoryImage image;
        read(image);
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{}, 42), image));
    }
}

TEST_F(QelRawImageTest, ignoresWhatFollowsTheVoxels)
{
    writeFile(path, FileContent().bytes() + "more");
    InMemoryImage image;
    read(image);
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{}, 42), image));
}

TEST_F(QelRawImageTest, savesAndLoadsAnImageWithoutVoxels)
{
    for (int axis = 0; axis < 5; ++axis) {
        unsigned long sizes[5] = {3, 3, 3, 3, 3};
        sizes[axis] = 0;
        InMemoryImage image;
        image.reserve(QEL_INT16, sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]);
        write(image, true);
        EXPECT_EQ(readFile(path).size(), VOXELS_AT);
        InMemoryImage back;
        read(back);
        EXPECT_EQ(shapeOf(back), shapeOf(image));
        EXPECT_EQ(back.getVoxelType(), QEL_INT16);
    }
}

TEST_F(QelRawImageTest, keepsComplexVoxels)
{
    for (VoxelTypes const type : {QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64}) {
        HostImage image(type, Shape{3, 2});
        write(image, true);
        HostImage back;
        read(back);
        EXPECT_EQ(back.getVoxelType(), type);
        EXPECT_EQ(back.content(), image.content());
        EXPECT_EQ(readFile(path).size(), VOXELS_AT + 6 * memory::sizeOfVoxelType(type));
    }
}

TEST_F(QelRawImageTest, givesAVoxelTypeThatItDoesNotKnowNoVoxels)
{
    for (unsigned int const type : {12u, 255u, 0x80000000u, 4294967295u}) {
        FileContent content;
        content.voxelType = type;
        for (unsigned int& size : content.sizes)
            size = 4294967295u;
        writeFile(path, content.header());
        InMemoryImage image;
        read(image);
        EXPECT_EQ(image.getVoxelType(), VoxelTypes(type));
        EXPECT_EQ(image.getNumOf(ROWS), 4294967295u);
        HostImage host;
        host.failOn(RESERVE);
        EXPECT_QEL_THROW(read(host), RuntimeError, "Cannot allocate a memory image for the image " + path);
        EXPECT_EQ(host.callsOf(WRITE_ROW), 0u);
        // And the way back.
        write(image, true);
        EXPECT_EQ(readFile(path).size(), VOXELS_AT);
    }
}

TEST_F(QelRawImageTest, refusesAnotherVersionToWrite)
{
    InMemoryImage const image = toImage(Picture<unsigned char>(Shape{}));
    EXPECT_QEL_THROW(write(image, false, 0), RuntimeError, "Invalid version: 0.");
    EXPECT_QEL_THROW(write(image, false, 1234567), RuntimeError, "Invalid version: 1234567.");
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

TEST_F(QelRawImageTest, overwritesOnlyIfTold)
{
    writeFile(path, "precious");
    InMemoryImage const image = toImage(Picture<unsigned char>(Shape{}));
    EXPECT_QEL_THROW(write(image), RuntimeError,
                     "File exist: <" + quoted() + ">. Set the overwrite parameter to true.");
    EXPECT_EQ(readFile(path), "precious");
    write(image, true);
    EXPECT_EQ(readFile(path).size(), 339u);
}

TEST_F(QelRawImageTest, quotesThePathOfAFileThatExistsAndNoOther)
{
    path = folder / "a \"b\" & c";
    std::string const quotedPath = '"' + (folder / "a &\"b&\" && c") + '"';
    InMemoryImage image = toImage(Picture<unsigned char>(Shape{}));
    EXPECT_QEL_THROW(read(image), RuntimeError,
                     "Cannot read the file: " + (folder / "a \"b\" & c") +
                         ".\t System error: No such file or directory");
    write(image);
    EXPECT_QEL_THROW(write(image), RuntimeError,
                     "File exist: <" + quotedPath + ">. Set the overwrite parameter to true.");
}

TEST_F(QelRawImageTest, overwritesNothingButARegularFile)
{
    InMemoryImage const image = toImage(Picture<unsigned char>(Shape{}));
    path = folder.path();
    EXPECT_QEL_THROW(write(image, true), RuntimeError, "<" + path + "> is not a regular file.");
    EXPECT_QEL_THROW(write(image), RuntimeError,
                     "File exist: <" + quoted() + ">. Set the overwrite parameter to true.");
    path = "/dev/full";
    EXPECT_QEL_THROW(write(image, true), RuntimeError, "</dev/full> is not a regular file.");
    path = folder / "link";
    ASSERT_EQ(symlink("/dev/full", path.c_str()), 0);
    EXPECT_QEL_THROW(write(image, true), RuntimeError, "<" + path + "> is not a regular file.");
}

TEST_F(QelRawImageTest, saysWhenAFileCannotBeCreated)
{
    InMemoryImage const image = toImage(Picture<unsigned char>(Shape{}));
    std::string const file = folder / "file";
    writeFile(file, "");
    for (std::string const& impossible : {folder / "no/such/folder", file + "/in a file", std::string(),
                                          folder / std::string(300, 'x'), std::string("/proc/new")})
        for (bool const overwrite : {false, true}) {
            path = impossible;
            EXPECT_QEL_THROW(write(image, overwrite), RuntimeError, "Cannot create or open the file " + path);
        }
}

TEST_F(QelRawImageTest, saysWhenAFileCannotBeOpened)
{
    InMemoryImage image;
    EXPECT_QEL_THROW(read(image), RuntimeError,
                     "Cannot read the file: " + path + ".\t System error: No such file or directory");
    path = "";
    EXPECT_QEL_THROW(read(image), RuntimeError, "Cannot read the file: .\t System error: No such file or directory");
    path = folder.path();
    EXPECT_QEL_THROW(read(image), RuntimeError, "Cannot read the file: " + path + ".\t System error: Is a directory");
    path = folder / "file";
    writeFile(path, FileContent().bytes());
    path += "/in a file";
    EXPECT_QEL_THROW(read(image), RuntimeError, "Cannot read the file: " + path + ".\t System error: Not a directory");
}

TEST_F(QelRawImageTest, refusesAnotherMagicNumber)
{
    FileContent content;
    content.magic = "QELO";
    writeFile(path, content.bytes());
    InMemoryImage image;
    EXPECT_QEL_THROW(read(image), RuntimeError, "Invalid magic number: QELO.");
    writeFile(path, "abcd");
    EXPECT_QEL_THROW(read(image), RuntimeError, "Invalid magic number: abcd.");
}

TEST_F(QelRawImageTest, refusesAnotherVersionToRead)
{
    for (unsigned int const version : {0u, 2u, 1234567u, 4294967295u}) {
        FileContent content;
        content.version = version;
        writeFile(path, content.bytes());
        InMemoryImage image;
        EXPECT_QEL_THROW(read(image), RuntimeError, "Invalid version file: " + std::to_string(version) + ".");
    }
}

TEST_F(QelRawImageTest, saysThatAFileIsShortWhereverItEnds)
{
    auto const picture = randomPicture<short>(Shape{3, 2, 2, 1, 2}, 47);
    std::string const whole = contentOf(picture).bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeFile(path, whole.substr(0, length));
        HostImage image;
        EXPECT_QEL_THROW(read(image), RuntimeError, "Unable to read from disk the image " + path);
        EXPECT_EQ(image.callsOf(RESERVE), 0u) << length;
    }
    writeFile(path, whole);
    HostImage image;
    read(image);
    EXPECT_TRUE(samePicture(picture, image));
}

TEST_F(QelRawImageTest, takesNoMemoryForVoxelsThatTheFileDoesNotHold)
{
    unsigned int const most = 4294967295u;
    unsigned int const lies[][5] = {{2, 1, 1, 1, 1},
                                    {most, 1, 1, 1, 1},
                                    {1, most, 1, 1, 1},
                                    {1, 1, most, 1, 1},
                                    {1, 1, 1, most, 1},
                                    {1, 1, 1, 1, most},
                                    {most, most, most, most, most},
                                    // Products of 2^64, which wrap to 0, and of 2^64 + 1 voxels, which wrap to 1.
                                    {1u << 31, 1u << 31, 4, 1, 1},
                                    {1u << 16, 1u << 16, 1u << 16, 1u << 16, 1},
                                    {67280421u, 274177u, 1000000u, 1, 1}};
    for (auto const& sizes : lies)
        for (VoxelTypes const type : {QEL_UINT8, QEL_FLOAT64, QEL_COMPLEX_FLOAT64}) {
            FileContent content;
            content.voxelType = type;
            std::copy(sizes, sizes + 5, content.sizes);
            writeFile(path, content.bytes());
            HostImage image;
            EXPECT_QEL_THROW(read(image), RuntimeError, "Unable to read from disk the image " + path);
            EXPECT_EQ(image.callsOf(RESERVE), 0u);
        }
}

TEST_F(QelRawImageTest, loadsHugeSizesThatHoldNoVoxel)
{
    FileContent content;
    content.voxels.clear();
    for (unsigned int& size : content.sizes)
        size = 4294967295u;
    content.sizes[2] = 0;
    writeFile(path, content.bytes());
    InMemoryImage image;
    read(image);
    EXPECT_EQ(image.getNumOf(COLUMNS), 4294967295u);
    EXPECT_EQ(image.getNumOf(SPECTRAL_SERIES), 0u);
    content.sizes[2] = 4294967295u;
    content.sizes[0] = 0;
    writeFile(path, content.bytes());
    read(image);
    EXPECT_EQ(image.getNumOf(COLUMNS), 0u);
}

/// Keeps its voxel type, and says that it took the other one.
class StubbornImage : public HostImage
{
public:
    VoxelTypes getVoxelType() const override { return QEL_FLOAT64; }
};

TEST_F(QelRawImageTest, saysWhenTheImageDoesNotTakeItsShape)
{
    writeFile(path, FileContent().bytes());
    HostImage image;
    image.failOn(RESERVE);
    EXPECT_QEL_THROW(read(image), RuntimeError, "Cannot allocate a memory image for the image " + path);
    StubbornImage stubborn;
    EXPECT_QEL_THROW(read(stubborn), RuntimeError, "Cannot allocate a memory image for the image " + path);
    EXPECT_EQ(stubborn.callsOf(WRITE_ROW), 0u);
}

TEST_F(QelRawImageTest, doesNotLookAtWhatSettersAndWritesReturn)
{
    writeFile(path, FileContent().bytes());
    HostImage image;
    image.failOn(SET_SPACING).failOn(SET_SPATIAL_UNIT).failOn(SET_TEMPORAL_UNIT).failOn(SET_INTERPRETATION);
    image.failOn(WRITE_ROW);
    read(image);
    EXPECT_EQ(image.callsOf(WRITE_ROW), 1u);
    EXPECT_EQ(image.sizes(), Shape{});
}

TEST_F(QelRawImageTest, saysWhenTheImageRefusesARow)
{
    HostImage image(randomPicture<short>(Shape{3, 4}, 3));
    image.failOn(READ_ROW, 2);
    EXPECT_QEL_THROW(write(image), RuntimeError, "Unable to read the input image");
    // What was written stays.
    EXPECT_EQ(readFile(path).size(), VOXELS_AT + 2 * 6);
}

TEST_F(QelRawImageTest, readsRowsFromAnImageThatCannotPointAtThem)
{
    InMemoryImage image = toImage(Picture<unsigned char>(Shape{5, 3}, 9));
    class NoPointers : public InMemoryImage
    {
    public:
        using InMemoryImage::InMemoryImage;
        bool getConstRowAt(unsigned long, unsigned char const*&, unsigned long, unsigned long, unsigned long,
                           unsigned long, unsigned long) const override
        {
            return false;
        }
        bool readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long, unsigned long row,
                       unsigned long, unsigned long, unsigned long) const override
        {
            std::memset(destination, static_cast<int>(row), numOfVoxels);
            return true;
        }
    } noPointers;
    noPointers.reserve(QEL_UINT8, 3, 2, 1, 1, 1);
    write(noPointers);
    EXPECT_EQ(readFile(path).substr(VOXELS_AT), std::string("\0\0\0\1\1\1", 6));
}

/// Says that it has 2^32 rows.
class TallImage : public HostImage
{
public:
    TallImage()
        : HostImage(QEL_UINT8, Shape{1})
    {}
    unsigned long getNumOf(Components const& component) const override { return component == ROWS ? 1ul << 32 : 1; }
};

TEST_F(QelRawImageTest, refusesSizesThatTheFormatCannotHold)
{
    EXPECT_QEL_THROW(write(TallImage()), RuntimeError, "Unable to write to disk the image " + path);
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

/// While it lives, no file can grow beyond this size: as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(unsigned long limit)
    {
        handler = signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old);
        rlimit limited = old;
        limited.rlim_cur = limit;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &old);
        signal(SIGXFSZ, handler);
    }

private:
    rlimit old;
    sighandler_t handler;
};

TEST_F(QelRawImageTest, noticesAFullDiskWhereverItStrikes)
{
    // A small image, which leaves the stream's buffer only at the end, and one that does not fit into that buffer.
    for (Shape const& shape : {Shape{4, 4}, Shape{5000, 3}}) {
        InMemoryImage const image = toImage(Picture<short>(shape, 7));
        unsigned long const size = VOXELS_AT + 2 * shape.count();
        for (unsigned long const limit : {0ul, 3ul, 100ul, VOXELS_AT, size / 2, size - 1}) {
            SCOPED_TRACE(limit);
            std::string text;
            {
                FileSizeLimit const full(limit);
                try {
                    write(image, true);
                } catch (RuntimeError& error) {
                    text = error.getInfo(false).c_str();
                }
            }
            EXPECT_EQ(text, "Unable to write to disk the image " + path + " ");
        }
        FileSizeLimit const justEnough(size);
        write(image, true);
    }
}

TEST_F(QelRawImageTest, letsAThrowingImagePass)
{
    for (Operation const operation : {GET_NUM_OF, GET_VOXEL_TYPE, GET_SPACING, GET_SPATIAL_UNIT, GET_TEMPORAL_UNIT,
                                      GET_INTERPRETATION, GET_CONST_ROW, READ_ROW}) {
        HostImage image(Picture<short>(Shape{2, 2}, 1));
        image.throwOn(operation);
        EXPECT_THROW(write(image, true), HostFailure) << operation;
    }
    writeFile(path, FileContent().bytes());
    for (Operation const operation :
         {RESERVE, GET_VOXEL_TYPE, SET_SPACING, SET_SPATIAL_UNIT, SET_TEMPORAL_UNIT, SET_INTERPRETATION, WRITE_ROW}) {
        HostImage image;
        image.throwOn(operation);
        EXPECT_THROW(read(image), HostFailure) << operation;
    }
}

TEST(QelRawImageHeader, hasItsSizeByVersion)
{
    EXPECT_EQ(QelRawImageCalibration::writeSize(0), 0u);
    EXPECT_EQ(QelRawImageCalibration::writeSize(1), 60u);
    EXPECT_EQ(QelRawImageCalibration::writeSize(77), 60u);
    EXPECT_EQ(QelRawImageHeader::writeSize(0), 0u);
    EXPECT_EQ(QelRawImageHeader::writeSize(1), 326u);
    EXPECT_EQ(QelRawImageHeader::writeSize(77), 326u);
    std::ostringstream stream;
    QelRawImageHeader().write(stream, std::make_unique<HostImage>().get(), 1);
    EXPECT_EQ(stream.str().size(), 326u);
}

TEST(QelRawImageHeader, refusesVersionZero)
{
    HostImage const image;
    std::stringstream stream;
    QelRawImageHeader header;
    QelRawImageCalibration calibration;
    EXPECT_QEL_THROW(header.write(stream, &image, 0), RuntimeError, "Invalid version: 0.");
    EXPECT_QEL_THROW(header.read(stream, 0), RuntimeError, "Invalid version: 0.");
    EXPECT_QEL_THROW(calibration.write(stream, 0), RuntimeError, "Invalid version: 0.");
    EXPECT_QEL_THROW(calibration.read(stream, 0), RuntimeError, "Invalid version: 0.");
    EXPECT_TRUE(stream.str().empty());
}

TEST(QelRawImageCalibration, startsAtOneWithoutAUnit)
{
    QelRawImageCalibration calibration;
    EXPECT_EQ(calibration.getDivisor(), 1u);
    EXPECT_EQ(calibration.getValue(), 1.0);
    EXPECT_EQ(calibration.getUnitName(), "");
    calibration.resetClass(4, 3.0, "mm");
    EXPECT_EQ(calibration.getDivisor(), 4u);
    EXPECT_EQ(calibration.getValue(), 3.0);
    EXPECT_EQ(calibration.getUnitName(), "mm");
    EXPECT_EQ(calibration.getSpacing(), 0.75);
    std::stringstream stream;
    calibration.write(stream, 1);
    std::string expected = bytesOf(4u) + bytesOf(3.0) + "mm";
    expected.resize(60, '\0');
    EXPECT_TRUE(stream.str() == expected);
    QelRawImageCalibration back;
    back.read(stream, 1);
    EXPECT_EQ(back.getDivisor(), 4u);
    EXPECT_EQ(back.getValue(), 3.0);
    EXPECT_EQ(back.getUnitName(), "mm");
}

} // namespace
} // namespace qel::test
