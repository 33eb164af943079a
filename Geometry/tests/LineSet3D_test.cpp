#include <qel/geometry/LineSet3D.h>

#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/TemporaryFolder.h"

#include <qel/Exception.h>
#include <qel/ObjectInfo.h>
#include <qel/Ref.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace qel::test {
namespace {

using geometry::LineSet3D;
using Coords = container::Vector<math::Vector3<double>>;
using Indices = container::Vector<unsigned long>;

Coords coordsOf(std::vector<math::Vector3<double>> const& vertices)
{
    Coords coords;
    for (auto const& vertex : vertices)
        coords.push_back(vertex);
    return coords;
}

Indices indicesOf(std::vector<unsigned long> const& values)
{
    Indices indices;
    for (unsigned long value : values)
        indices.push_back(value);
    return indices;
}

/// Lines of three and two vertices, which share one. Nothing follows the second line.
void makeTwoLines(LineSet3D& lines)
{
    lines.setCoords(coordsOf({{0, 1, 2}, {-0.5, 1e10, 1234567.25}, {3, 4, 5}, {0.1, 1e-7, -0.0}}));
    lines.setIndices(indicesOf({0, 1, 2, LineSet3D::stop, 3, 1}));
}

template <class T> void append(std::string& bytes, T value)
{
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
}

/// The bytes of the file of makeTwoLines, field by field.
std::string fileOfTwoLines(unsigned long firstIndex = 0)
{
    std::string bytes = "QELO";
    append(bytes, 9UL);
    bytes += "LineSet3D";
    append(bytes, 4UL);
    for (double const value : {0., 1., 2., -0.5, 1e10, 1234567.25, 3., 4., 5., 0.1, 1e-7, -0.0})
        append(bytes, value);
    append(bytes, 6UL);
    for (unsigned long const value : {firstIndex, 1UL, 2UL, ~0UL, 3UL, 1UL})
        append(bytes, value);
    return bytes;
}

class LineSet3DTest : public testing::Test
{
protected:
    LineSet3DTest() { makeTwoLines(lines); }

    TemporaryFolder folder;
    std::string const path = folder / "lines.qelo";
    LineSet3D lines;
};

TEST_F(LineSet3DTest, isEmptyAtFirst)
{
    Ref<LineSet3D> const fresh = LineSet3D::New();
    EXPECT_TRUE(fresh->getCoords().empty());
    EXPECT_TRUE(fresh->getIndices().empty());
}

TEST_F(LineSet3DTest, separatesLinesByTheLargestNumber)
{
    EXPECT_EQ(LineSet3D::stop, std::numeric_limits<unsigned long>::max());
    EXPECT_EQ(lines.getIndices().size(), 6UL);
}

TEST_F(LineSet3DTest, copiesAndAssignsVerticesAndIndices)
{
    LineSet3D copy(lines);
    LineSet3D assigned;
    assigned = lines;
    assigned = *&assigned;
    EXPECT_TRUE(copy == lines);
    EXPECT_TRUE(assigned == lines);
    lines.setIndices({});
    EXPECT_EQ(copy.getIndices().size(), 6UL);
    EXPECT_EQ(assigned.getIndices().size(), 6UL);
}

/// An object of another class.
class OtherData : public Data
{
public:
    void read(String const&) override {}
    void write(String const&, WriteMode const&, bool) const override {}
    bool operator==(Data const&) const override { return true; }
};

TEST_F(LineSet3DTest, comparesVerticesIndicesAndClass)
{
    LineSet3D other(lines);
    EXPECT_FALSE(other != lines);
    EXPECT_TRUE(static_cast<Data const&>(other) == static_cast<Data const&>(lines));
    other.setIndices(indicesOf({0, 1, 2, LineSet3D::stop, 3, 2}));
    EXPECT_TRUE(other != lines);
    other = lines;
    Coords coords = lines.getCoords();
    coords[3][1] = 0;
    other.setCoords(coords);
    EXPECT_FALSE(static_cast<Data const&>(other) == static_cast<Data const&>(lines));
    EXPECT_FALSE(static_cast<Data const&>(lines) == static_cast<Data const&>(OtherData()));
}

TEST_F(LineSet3DTest, writesItsFileByteByByte)
{
    lines.write(path.c_str(), BINARY, false);
    EXPECT_EQ(readFile(path), fileOfTwoLines());
    LineSet3D().write(path.c_str(), BINARY, true);
    EXPECT_EQ(readFile(path), fileOfTwoLines().substr(0, 21) + std::string(16, '\0'));
}

TEST_F(LineSet3DTest, readsWhatItWrote)
{
    lines.setCoords(coordsOf({{NAN, INFINITY, -INFINITY}, {1e308, -0.0, 5e-324}, {1, 2, 3}, {4, 5, 6}}));
    lines.write(path.c_str(), BINARY, false);
    LineSet3D copy;
    copy.setIndices(indicesOf({7}));
    copy.read(path.c_str());
    EXPECT_EQ(copy.getIndices(), lines.getIndices());
    ASSERT_EQ(copy.getCoords().size(), 4UL);
    EXPECT_EQ(std::memcmp(copy.getCoords().data(), lines.getCoords().data(), 4 * sizeof(math::Vector3<double>)), 0);

    LineSet3D().write(path.c_str(), BINARY, true);
    copy.read(path.c_str());
    EXPECT_TRUE(copy == LineSet3D());
}

TEST_F(LineSet3DTest, isLoadedByTheNameInItsFile)
{
    EXPECT_EQ(ObjectInfo::getObjectInfoFromName("LineSet3D").getClassName(), "LineSet3D");
    lines.write(path.c_str(), BINARY, false);
    Ref<Data> const data = Data::load(path.c_str());
    ASSERT_TRUE(data);
    EXPECT_TRUE(*data == lines);
}

TEST_F(LineSet3DTest, keepsAFileUnlessItMayWriteOverIt)
{
    writeFile(path, "precious");
    EXPECT_QEL_THROW(lines.write(path.c_str(), BINARY, false), SerializationException,
                     "The file " + path + " already exists.");
    // That comes before the mode is looked at.
    EXPECT_QEL_THROW(lines.write(path.c_str(), static_cast<WriteMode>(1), false), SerializationException,
                     "The file " + path + " already exists.");
    EXPECT_QEL_THROW(lines.write(path.c_str(), static_cast<WriteMode>(1), true), SerializationException,
                     "Only binary format is supported");
    EXPECT_EQ(readFile(path), "precious");
    lines.write(path.c_str(), BINARY, true);
    EXPECT_EQ(readFile(path), fileOfTwoLines());
}

TEST_F(LineSet3DTest, tellsWhatItCannotWrite)
{
    std::string const nowhere = folder / "none/lines.qelo";
    std::string const text = "Cannot open the <" + nowhere + "> file.";
    EXPECT_QEL_THROW(lines.write(nowhere.c_str(), BINARY, false), SerializationException, text);
    EXPECT_QEL_THROW(lines.exportAsKesraMesh(nowhere.c_str()), SerializationException, text);
    EXPECT_QEL_THROW(lines.write("/dev/full", BINARY, true), SerializationException,
                     "Cannot write the </dev/full> file.");
}

TEST_F(LineSet3DTest, tellsWhatItCannotRead)
{
    LineSet3D const before(lines);
    auto const refused = [&](std::string const& content, std::string const& text) {
        writeFile(path, content);
        EXPECT_QEL_THROW(lines.read(path.c_str()), SerializationException, text);
        EXPECT_TRUE(lines == before);
    };
    EXPECT_QEL_THROW(lines.read(path.c_str()), SerializationException, "The file " + path + " does not exists.");
    std::string const corrupted = "The <" + path + "> file is corrupted.";
    std::string const good = fileOfTwoLines();
    refused("", "Invalid magic number: <>.");
    refused("QE", "Invalid magic number: <QE>.");
    refused("QELI" + good.substr(4), "Invalid magic number: <QELI>.");
    std::string other = good;
    other.replace(12, 9, "LineSet4D");
    refused(other, "The <LineSet4D> LineSet3D isn't supported.");
    refused("QELO" + std::string(8, '\0'), "The <> LineSet3D isn't supported.");
    for (std::size_t length = 4; length < good.size(); ++length)
        refused(good.substr(0, length), corrupted);
}

TEST_F(LineSet3DTest, refusesCountsThatTheFileCannotHold)
{
    for (std::size_t const offset : {4UL, 21UL, 21UL + 8 + 4 * 24})
        for (unsigned long const count : {~0UL, 1UL << 63, 1UL << 61, (1UL << 61) / 3 + 1, 1UL << 40, 1000UL}) {
            std::string bytes = fileOfTwoLines();
            std::memcpy(bytes.data() + offset, &count, sizeof count);
            writeFile(path, bytes);
            EXPECT_QEL_THROW(LineSet3D().read(path.c_str()), SerializationException,
                             "The <" + path + "> file is corrupted.");
        }
}

TEST_F(LineSet3DTest, refusesIndicesWithoutAVertex)
{
    LineSet3D const before(lines);
    for (unsigned long const index : {4UL, 5UL, 1UL << 32, ~0UL - 1}) {
        writeFile(path, fileOfTwoLines(index));
        EXPECT_QEL_THROW(lines.read(path.c_str()), SerializationException, "The <" + path + "> file is corrupted.");
        EXPECT_TRUE(lines == before);
    }
    for (unsigned long const index : {3UL, LineSet3D::stop}) {
        writeFile(path, fileOfTwoLines(index));
        lines.read(path.c_str());
        EXPECT_EQ(lines.getIndices()[0], index);
    }
}

/// Whatever stands in a file, it is read or refused.
TEST_F(LineSet3DTest, survivesDamagedFiles)
{
    std::mt19937 random(1);
    std::string const good = fileOfTwoLines();
    for (int i = 0; i < 200; ++i) {
        std::string bytes = good;
        for (unsigned int change = random() % 4; change < 4; ++change)
            bytes[random() % bytes.size()] = static_cast<char>(random() % 2 ? random() : 0);
        bytes.resize(random() % 3 ? bytes.size() : random() % bytes.size());
        writeFile(path, bytes);
        try {
            lines.read(path.c_str());
            for (unsigned long index : lines.getIndices())
                ASSERT_TRUE(index == LineSet3D::stop || index < lines.getCoords().size());
        } catch (SerializationException const&) {
        }
    }
}

TEST_F(LineSet3DTest, exportsATextForViewers)
{
    lines.exportAsKesraMesh(path.c_str());
    EXPECT_EQ(readFile(path), "# Zolva 3D ASCII 2.0\n"
                              "\n"
                              "define Lines 6\n"
                              "define Vertices 4\n"
                              "\n"
                              "Vertices { float[3] Coordinates } = @1\n"
                              "Lines { int LineIdx } = @2\n"
                              "\n"
                              "Parameters {\n"
                              "  ContentType \"ZvLineSet\"\n"
                              "}\n"
                              "\n"
                              "@1\n"
                              "0 1 2\n"
                              "-0.5 1e+10 1.23457e+06\n"
                              "3 4 5\n"
                              "0.1 1e-07 -0\n"
                              "\n"
                              "@2\n"
                              "0 1 2 -1 3 1 \n");
    LineSet3D().exportAsKesraMesh(path.c_str());
    std::string const text = readFile(path);
    EXPECT_NE(text.find("\ndefine Lines 0\ndefine Vertices 0\n"), std::string::npos);
    EXPECT_EQ(text.substr(text.find("\n@1") + 1), "@1\n\n@2\n\n");
}

TEST_F(LineSet3DTest, isAPropertyThatNoTextSets)
{
    PropertyLineSet3D property;
    EXPECT_EQ(property.get(), nullptr);
    property = &lines;
    String rest;
    EXPECT_FALSE(property.read("lines.qelo", rest));
    EXPECT_EQ(property.get(), &lines);
    Property<LineSet3D const*> input;
    input = &lines;
    EXPECT_EQ(input.get(), &lines);
}

} // namespace
} // namespace qel::test
