#include "Core/tests/Support/Support.h"

#include <qel/morphology/PropertyMorphologicalLut2D.h>
#include <qel/morphology/PropertyMorphologicalLut3D.h>

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace qel::test {
namespace {

using morphology::MorphologicalLut2D;
using morphology::MorphologicalLut3D;
using morphology::PropertyMorphologicalLut2D;
using morphology::PropertyMorphologicalLut3D;
using testing::HasSubstr;

MorphologicalLut2D tableOf(MorphologicalLut2D*, std::vector<unsigned char> const& bytes)
{
    MorphologicalLut2D lut;
    lut.buildFromLut(bytes.data(), 512);
    return lut;
}

MorphologicalLut3D tableOf(MorphologicalLut3D*, std::vector<unsigned char> const& bytes)
{
    std::vector<int> words(4194304);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    MorphologicalLut3D lut;
    lut.buildFromLut(words.data(), words.size());
    return lut;
}

template <class PropertyLut> class PropertyMorphologicalLutTest : public testing::Test
{
protected:
    using Lut = std::remove_pointer_t<typename PropertyLut::ValueType>;
    static constexpr std::size_t fileSize = std::is_same_v<Lut, MorphologicalLut2D> ? 516 : 16777220;

    /// A file whose bytes go by its name; what follows the first four is kept for comparison.
    std::string file(std::string const& name)
    {
        std::string bytes(fileSize, '\0');
        for (std::size_t i = 0; i < fileSize; ++i)
            bytes[i] = static_cast<char>(i * (i >> 7) + name.size());
        content.assign(bytes.begin() + 4, bytes.end());
        writeFile(folder / name, bytes);
        return folder / name;
    }
    Lut table() const { return tableOf(static_cast<Lut*>(nullptr), content); }
    bool read(std::string const& text)
    {
        String rest;
        bool const answer = property.read(text.c_str(), rest);
        error = rest.c_str();
        return answer;
    }

    TemporaryFolder folder;
    PropertyLut property;
    std::vector<unsigned char> content;
    std::string error;
};

using Properties = testing::Types<PropertyMorphologicalLut2D, PropertyMorphologicalLut3D>;
TYPED_TEST_SUITE(PropertyMorphologicalLutTest, Properties);

TYPED_TEST(PropertyMorphologicalLutTest, isNullAtFirst)
{
    EXPECT_EQ(this->property.get(), nullptr);
    this->property.destroyPrivateAllocation();
    EXPECT_EQ(this->property.get(), nullptr);
}

TYPED_TEST(PropertyMorphologicalLutTest, readsATableBehindFourBytesOfAnyValue)
{
    EXPECT_TRUE(this->read("@path:" + this->file("a table, with blanks")));
    ASSERT_NE(this->property.get(), nullptr);
    EXPECT_TRUE(*this->property.get() == this->table());
    EXPECT_TRUE(this->read("@path:" + this->file("another")));
    EXPECT_TRUE(*this->property.get() == this->table());
}

TYPED_TEST(PropertyMorphologicalLutTest, leavesItsValueAloneForATextWithoutThePrefix)
{
    typename TestFixture::Lut mine;
    this->property = &mine;
    std::string const path = this->file("table");
    for (std::string const& text : {std::string(), path, "path:" + path, "@path" + path, " @path:" + path,
                                    "@PATH:" + path, std::string("@v2:1_2"), std::string("null")}) {
        EXPECT_FALSE(this->read(text)) << text;
        EXPECT_EQ(this->property.get(), &mine);
        EXPECT_EQ(this->error, text);
    }
}

TYPED_TEST(PropertyMorphologicalLutTest, refusesFilesOfAnotherSize)
{
    ASSERT_TRUE(this->read("@path:" + this->file("good")));
    auto* const before = this->property.get();
    auto const table = this->table();
    std::size_t const good = this->fileSize;
    for (std::size_t const size : {std::size_t(0), std::size_t(4), good - 4, good - 1, good + 1}) {
        std::string const path = this->folder / "bad";
        writeFile(path, "");
        std::filesystem::resize_file(path, size);
        EXPECT_FALSE(this->read("@path:" + path));
        EXPECT_EQ(this->error,
                  path + ": its size is " + std::to_string(size) + " bytes instead of " + std::to_string(good));
        EXPECT_EQ(this->property.get(), before);
    }
    EXPECT_TRUE(*this->property.get() == table);
}

TYPED_TEST(PropertyMorphologicalLutTest, refusesWhatIsNoFile)
{
    EXPECT_FALSE(this->read("@path:"));
    EXPECT_THAT(this->error, HasSubstr("No such file or directory"));
    std::string const missing = this->folder / "missing";
    EXPECT_FALSE(this->read("@path:" + missing));
    EXPECT_EQ(this->error, missing + ": No such file or directory");
    std::string const directory = this->folder / "directory";
    std::filesystem::create_directory(directory);
    EXPECT_FALSE(this->read("@path:" + directory));
    EXPECT_EQ(this->error, directory + ": Is a directory");
    std::string const pipe = this->folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(this->read("@path:" + pipe));
    EXPECT_EQ(this->error, pipe + ": not a regular file");
    EXPECT_FALSE(this->read("@path:/dev/zero"));
    EXPECT_EQ(this->error, "/dev/zero: not a regular file");
    EXPECT_EQ(this->property.get(), nullptr);
}

TYPED_TEST(PropertyMorphologicalLutTest, followsALink)
{
    std::filesystem::create_symlink(this->file("table"), this->folder / "link");
    EXPECT_TRUE(this->read("@path:" + (this->folder / "link")));
    EXPECT_TRUE(*this->property.get() == this->table());
}

TYPED_TEST(PropertyMorphologicalLutTest, freesItsOwnTableAlone)
{
    ASSERT_TRUE(this->read("@path:" + this->file("table")));
    this->property.destroyPrivateAllocation();
    EXPECT_EQ(this->property.get(), nullptr);

    typename TestFixture::Lut mine;
    ASSERT_TRUE(this->read("@path:" + this->file("table")));
    this->property = &mine;
    this->property.destroyPrivateAllocation();
    EXPECT_EQ(this->property.get(), &mine);
    this->property.set(&mine);
    ASSERT_TRUE(this->read("@path:" + this->file("table")));
    EXPECT_NE(this->property.get(), &mine);
}

TYPED_TEST(PropertyMorphologicalLutTest, isCopiedAsAPointer)
{
    ASSERT_TRUE(this->read("@path:" + this->file("table")));
    {
        TypeParam other;
        other = this->property;
        EXPECT_EQ(other.get(), this->property.get());
        other.destroyPrivateAllocation();
        EXPECT_EQ(other.get(), this->property.get());
    }
    EXPECT_TRUE(*this->property.get() == this->table());
    this->property = nullptr;
    EXPECT_EQ(this->property.get(), nullptr);
}

TYPED_TEST(PropertyMorphologicalLutTest, keepsItsTableWhileItIsLocked)
{
    ASSERT_TRUE(this->read("@path:" + this->file("table")));
    auto* const before = this->property.get();
    auto const table = this->table();
    this->property.lock(true);
    EXPECT_FALSE(this->read("@path:" + this->file("other")));
    this->property.destroyPrivateAllocation();
    this->property = nullptr;
    EXPECT_EQ(this->property.get(), before);
    EXPECT_TRUE(*this->property.get() == table);
}

} // namespace
} // namespace qel::test
