#include <qel/Data.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <qel/Exception.h>

#include "Core/private/ObjectInfoPrivate.h"
#include "Core/private/Serialization/MagicNumberObjectFile.h"
#include "Core/private/Serialization/ObjectFile.h"
#include "Core/private/Throw.h"
#include "Core/tests/Support/Expect.h"
#include "Core/tests/Support/TemporaryFolder.h"

using namespace qel;

namespace {

int numOfNotes = 0;

/// The smallest class that lives in an object file: a text and a number.
class NoteOfTheTests : public Data
{
public:
    NoteOfTheTests() { ++numOfNotes; }
    ~NoteOfTheTests() noexcept(false) override { --numOfNotes; }

    static Object* BaseNew() { return new NoteOfTheTests; }

    void read(String const& path) override
    {
        std::ifstream stream = serialization::openForReading(path);
        serialization::readingFrom(path, [&] {
            serialization::readObjectHeader(stream);
            archive::BinaryInputArchive archive(stream);
            serialize(archive);
        });
    }

    void write(String const& path, WriteMode const& mode, bool overwrite) const override
    {
        if (!overwrite && serialization::fileExists(path))
            QEL_THROW(SerializationException, "The <" << path << "> file already exists.");
        serialization::writeFile(path, [&](std::ostream& stream) {
            if (mode != BINARY)
                QEL_THROW(SerializationException, "The write mode (" << static_cast<int>(mode) << ") is unknown.");
            serialization::writeObjectHeader(stream, "NoteOfTheTests");
            archive::BinaryOutputArchive archive(stream);
            NoteOfTheTests copy(*this);
            copy.serialize(archive);
        });
    }

    bool operator==(Data const& other) const override
    {
        auto const* const note = dynamic_cast<NoteOfTheTests const*>(&other);
        return note != nullptr && *note == *this;
    }
    bool operator==(NoteOfTheTests const& other) const { return text == other.text && number == other.number; }

    template <class Archive> void serialize(Archive& archive)
    {
        serialization::serialize(archive, text);
        serialization::serialize(archive, number);
    }

    NoteOfTheTests(NoteOfTheTests const& other)
        : Data(other)
        , text(other.text)
        , number(other.number)
    {
        ++numOfNotes;
    }

    String text;
    double number = 0;
};
QEL_REGISTER_OBJECT(NoteOfTheTests)

/// Registered, but no Data.
class ThingOfTheTests : public Object
{
public:
    static Object* BaseNew() { return new ThingOfTheTests; }
};
QEL_REGISTER_OBJECT(ThingOfTheTests)

std::string header(std::string const& name)
{
    std::string file = "QELO";
    file += static_cast<char>(name.size());
    return file + std::string(7, '\0') + name;
}

/// A file that nobody can open, not even root.
void makeSocket(std::string const& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The long way round for a short name: an address has room for some 100 characters.
    std::filesystem::path const place(path);
    int const folder = open(place.parent_path().c_str(), O_DIRECTORY);
    std::string const name = "/proc/self/fd/" + std::to_string(folder) + '/' + place.filename().string();
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    int const listener = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    close(listener);
    close(folder);
}

class DataFiles : public testing::Test
{
protected:
    ~DataFiles() override { EXPECT_EQ(numOfNotes, 0); }

    std::string file(std::string const& content)
    {
        std::string const path = folder / "file.qelo";
        test::writeFile(path, content);
        return path;
    }

    test::TemporaryFolder folder;
};

} // namespace

TEST_F(DataFiles, haveMagicNumberClassNameAndTheBytesOfTheClass)
{
    NoteOfTheTests note;
    note.text = "abc";
    note.number = 1.0;
    String const path = (folder / "note.qelo").c_str();
    note.write(path, BINARY, false);
    std::string const expected = std::string("QELO\x0e\0\0\0\0\0\0\0NoteOfTheTests\3\0\0\0\0\0\0\0abc", 37) +
                                 std::string("\0\0\0\0\0\0\xf0\x3f", 8);
    EXPECT_EQ(test::readFile(path.c_str()), expected);
}

TEST_F(DataFiles, loadMakesAnObjectOfTheClassThatTheFileNames)
{
    NoteOfTheTests note;
    note.text = "abc";
    note.number = 0.1;
    String const path = (folder / "note.qelo").c_str();
    note.write(path, BINARY, false);
    Ref<Data> const loaded = Data::load(path);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->getReference(), 1u);
    EXPECT_TRUE(*loaded == note);
    note.number = 0.2;
    EXPECT_FALSE(*loaded == note);
}

TEST_F(DataFiles, loadReportsAMissingFile)
{
    std::string const path = folder / "none";
    EXPECT_QEL_WHAT(Data::load(path.c_str()), SerializationException,
                    "Serialization exception :\n#1 Error : The file " + path + " does not exists. \n");
    EXPECT_QEL_THROW(Data::load(""), SerializationException, "The file  does not exists.");
    // A file cannot have files below it: the status is an error.
    std::string const below = file("") + "/file";
    EXPECT_QEL_THROW(Data::load(below.c_str()), SerializationException, "The file " + below + " does not exists.");
}

TEST_F(DataFiles, loadReportsAFileThatCannotBeOpened)
{
    std::string const path = folder / "socket";
    makeSocket(path);
    EXPECT_QEL_THROW(Data::load(path.c_str()), SerializationException, "Cannot open the <" + path + "> file.");
}

TEST_F(DataFiles, loadReportsAnotherMagicNumber)
{
    auto const expectMagic = [&](std::string const& content, std::string const& magic) {
        EXPECT_QEL_THROW(Data::load(file(content).c_str()), SerializationException,
                         "Invalid magic number: <" + magic + ">.");
    };
    expectMagic("QELI\1\0\0\0", "QELI"); // a raw image
    expectMagic("QELo", "QELo");
    expectMagic("", "");
    expectMagic("QEL", "QEL");
    expectMagic(std::string("Q\0LO", 4), "Q");
    EXPECT_QEL_THROW(Data::load(folder.path().c_str()), SerializationException, "Invalid magic number: <>.");
}

TEST_F(DataFiles, reportAWrongMagicNumberFromItsOwnPlace)
{
    try {
        Data::load(file("QELI").c_str());
        FAIL();
    } catch (SerializationException const& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/private/Serialization/MagicNumberObjectFile");
    }
}

TEST_F(DataFiles, loadReportsAClassThatIsNotRegistered)
{
    EXPECT_QEL_THROW(Data::load(file(header("Nothing")).c_str()), RuntimeError,
                     "No object of type ObjectInfo for the class name : Nothing");
    EXPECT_QEL_THROW(Data::load(file(header("")).c_str()), RuntimeError,
                     "No object of type ObjectInfo for the class name : ");
}

TEST_F(DataFiles, loadGivesNullForAClassThatIsNoData)
{
    EXPECT_FALSE(Data::load(file(header("ThingOfTheTests")).c_str()));
}

TEST_F(DataFiles, loadRefusesAClassNameThatIsLongerThanTheFile)
{
    std::string const name = header("NoteOfTheTests");
    for (std::size_t length = 4; length < name.size(); ++length) {
        std::string const path = file(name.substr(0, length));
        EXPECT_QEL_THROW(Data::load(path.c_str()), SerializationException, "The <" + path + "> file is corrupted.");
    }
    std::string const path = file("QELO" + std::string(8, '\xff') + "NoteOfTheTests");
    EXPECT_QEL_THROW(Data::load(path.c_str()), SerializationException, "The <" + path + "> file is corrupted.");
}

TEST_F(DataFiles, loadLetsTheClassReportItsOwnBytes)
{
    std::string const path = file(header("NoteOfTheTests") + std::string("\3\0\0\0\0\0\0\0abc", 11) + "1234567");
    EXPECT_QEL_THROW(Data::load(path.c_str()), SerializationException, "The <" + path + "> file is corrupted.");
}

TEST_F(DataFiles, tellWhatKeptThemFromBeingWritten)
{
    NoteOfTheTests const note;
    std::string const path = file("as it was");
    EXPECT_QEL_THROW(note.write(path.c_str(), BINARY, false), SerializationException,
                     "The <" + path + "> file already exists.");
    EXPECT_EQ(test::readFile(path), "as it was");
    note.write(path.c_str(), BINARY, true);
    EXPECT_TRUE(*Data::load(path.c_str()) == note);
    std::string const nowhere = folder / "none/file";
    EXPECT_QEL_THROW(note.write(nowhere.c_str(), BINARY, false), SerializationException,
                     "Cannot open the <" + nowhere + "> file.");
    EXPECT_QEL_THROW(note.write(path.c_str(), static_cast<WriteMode>(7), true), SerializationException,
                     "The write mode (7) is unknown.");
    EXPECT_QEL_THROW(note.write("/dev/full", BINARY, true), SerializationException,
                     "Cannot write the </dev/full> file.");
}
