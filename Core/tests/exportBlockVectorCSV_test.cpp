#include <qel/profiler/exportBlockVectorCSV.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <string>

namespace qel::profiler {
namespace {

using Blocks2d = tbb::concurrent_vector<access::Block2d, tbb::cache_aligned_allocator<access::Block2d>>;
using Blocks3d = tbb::concurrent_vector<access::Block3d, tbb::cache_aligned_allocator<access::Block3d>>;

std::string const titlesWithSemicolons = "Columns begin;Columns end;Rows begin;Rows end;Plans begin;Plans end;"
                                         "SpectralSeries begin;SpectralSeries end;TimeSeries begin;TimeSeries end\n";

class ExportBlockVectorCSVTest : public testing::Test
{
protected:
    ExportBlockVectorCSVTest()
    {
        folder = std::filesystem::temp_directory_path() /
                 (std::string("blocks-") + testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder);
        path = (folder / "blocks.csv").string();
    }
    ~ExportBlockVectorCSVTest() override { std::filesystem::remove_all(folder); }

    std::string content() const
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path folder;
    std::string path;
};

TEST_F(ExportBlockVectorCSVTest, writesBlocksOfTwoDimensionsInVectorOrder)
{
    Blocks2d blocks;
    blocks.push_back({{13, 3, 10}, {27, 7, 1024}, 4, 5, 6});
    blocks.push_back({{1, 0, 10}, {123456, 1000, 1024}, 0, 0, 0});
    EXPECT_TRUE(exportBlockVectorCSV(blocks, path.c_str(), ';'));
    EXPECT_EQ(content(), titlesWithSemicolons + "7;27;3;13;4;5;6;7;5;6\n1000;123456;0;1;0;1;0;1;0;1\n");
}

TEST_F(ExportBlockVectorCSVTest, writesBlocksOfThreeDimensions)
{
    Blocks3d blocks;
    blocks.push_back({{9, 2, 10}, {13, 3, 10}, {27, 7, 1024}, 5, 6});
    EXPECT_TRUE(exportBlockVectorCSV(blocks, path.c_str(), ','));
    EXPECT_EQ(content(), "Columns begin,Columns end,Rows begin,Rows end,Plans begin,Plans end,"
                         "SpectralSeries begin,SpectralSeries end,TimeSeries begin,TimeSeries end\n"
                         "7,27,3,13,2,9,6,7,5,6\n");
}

TEST_F(ExportBlockVectorCSVTest, writesTheTitlesAloneForNoBlock)
{
    EXPECT_TRUE(exportBlockVectorCSV(Blocks2d(), path.c_str(), ';'));
    EXPECT_EQ(content(), titlesWithSemicolons);
    EXPECT_TRUE(exportBlockVectorCSV(Blocks3d(), path.c_str(), ';'));
    EXPECT_EQ(content(), titlesWithSemicolons);
}

TEST_F(ExportBlockVectorCSVTest, truncatesTheFile)
{
    std::ofstream(path) << std::string(10000, 'x');
    EXPECT_TRUE(exportBlockVectorCSV(Blocks2d(), path.c_str(), ';'));
    EXPECT_EQ(content(), titlesWithSemicolons);
}

TEST_F(ExportBlockVectorCSVTest, tellsAFileThatCannotBeOpened)
{
    Blocks2d blocks;
    blocks.push_back({{1, 0, 10}, {1, 0, 1024}, 0, 0, 0});
    EXPECT_FALSE(exportBlockVectorCSV(blocks, (folder / "missing" / "blocks.csv").c_str(), ';'));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    EXPECT_FALSE(exportBlockVectorCSV(blocks, folder.c_str(), ';'));
    EXPECT_FALSE(exportBlockVectorCSV(Blocks3d(), (folder / "missing" / "blocks.csv").c_str(), ';'));
    EXPECT_FALSE(exportBlockVectorCSV(blocks, "", ';'));
    EXPECT_FALSE(exportBlockVectorCSV(blocks, nullptr, ';'));
}

TEST_F(ExportBlockVectorCSVTest, doesNotGroupDigitsAsTheHostsLocaleWould)
{
    struct Grouping : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale const before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    Blocks2d blocks;
    blocks.push_back({{1, 0, 10}, {123456, 1000, 1024}, 0, 0, 0});
    bool const written = exportBlockVectorCSV(blocks, path.c_str(), ';');
    std::locale::global(before);
    EXPECT_TRUE(written);
    EXPECT_EQ(content(), titlesWithSemicolons + "1000;123456;0;1;0;1;0;1;0;1\n");
}

} // namespace
} // namespace qel::profiler
