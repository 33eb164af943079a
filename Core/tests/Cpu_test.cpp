#include <qel/devices/Cpu.h>

#include "Core/private/ClassicText.h"
#include "Core/private/CpuPrivate.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

namespace qel::devices {
namespace {

std::string contentOf(std::string const& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class CpuTest : public testing::Test
{
protected:
    void SetUp() override { CpuPrivate::initClass(); }
};

TEST_F(CpuTest, isOneSharedObject) { EXPECT_EQ(&Cpu::getDevice(), &Cpu::getDevice()); }

TEST_F(CpuTest, isReadOnceUntilItIsGivenUp)
{
    Cpu const* const before = &Cpu::getDevice();
    CpuPrivate::initClass();
    EXPECT_EQ(&Cpu::getDevice(), before);
    EXPECT_GT(before->getTotalMemory(), 0u);
}

TEST_F(CpuTest, isAllZeroAfterUnloadAndComesBack)
{
    unsigned long const total = Cpu::getDevice().getTotalMemory();
    CpuPrivate::exitClass();
    Cpu const& unknown = Cpu::getDevice();
    EXPECT_EQ(unknown.getTotalMemory(), 0u);
    EXPECT_EQ(unknown.getSSELevel(), 0u);
    EXPECT_EQ(unknown.getAVXLevel(), 0u);
    EXPECT_FALSE(unknown.hasSSE());
    EXPECT_FALSE(unknown.hasAVX());
    EXPECT_FALSE(unknown.hasMMX());
    EXPECT_FALSE(unknown.hasMMXExt());
    EXPECT_EQ(unknown.getNumOfCores(), 0u);
    EXPECT_EQ(unknown.getLogicalProcessors(), 0u);
    EXPECT_EQ(unknown.getCacheSize(2), 0u);
    EXPECT_EQ(unknown.getDeviceName().length(), 0u);
    CpuPrivate::exitClass();
    CpuPrivate::initClass();
    EXPECT_EQ(Cpu::getDevice().getTotalMemory(), total);
}

TEST_F(CpuTest, countsMemoryInBytes)
{
    auto const entries = CpuPrivate::fetchMemInfos(contentOf("/proc/meminfo"));
    ASSERT_TRUE(entries.count("MemTotal"));
    EXPECT_EQ(Cpu::getDevice().getTotalMemory(), entries.at("MemTotal"));
    EXPECT_GT(Cpu::getDevice().getTotalMemory(), 64ul << 20);
    EXPECT_GT(Cpu::getDevice().getAvailableMemory(), 0u);
    EXPECT_LT(Cpu::getDevice().getAvailableMemory(), 2 * Cpu::getDevice().getTotalMemory());
}

TEST_F(CpuTest, agreesWithTheCompilerOnTheLevels)
{
    Cpu const& cpu = Cpu::getDevice();
    if (!cpu.hasSSE())
        GTEST_SKIP() << "the processor was not identified";
    EXPECT_EQ(cpu.getSSELevel() >= 65, __builtin_cpu_supports("sse4.1") != 0);
    EXPECT_EQ(cpu.getSSELevel() >= 66, __builtin_cpu_supports("sse4.2") != 0);
    EXPECT_EQ(cpu.getSSELevel() >= 49, __builtin_cpu_supports("ssse3") != 0);
    EXPECT_EQ(cpu.hasAVX(), cpu.getAVXLevel() > 0);
    EXPECT_EQ(cpu.hasMMX(), __builtin_cpu_supports("mmx") != 0);
}

TEST_F(CpuTest, hasTheWordSizeOfTheBuild) { EXPECT_EQ(Cpu::getDevice().getArchitecture(), 64u); }

TEST_F(CpuTest, takesTheCachesOfTheSystemsFiles)
{
    for (int i = 0; i < 4; ++i) {
        std::string const folder = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(i);
        unsigned int expected = 0;
        if (CpuPrivate::readCacheSize(contentOf(folder + "/size"), expected)) {
            EXPECT_EQ(Cpu::getDevice().getCacheSize(i), expected) << i;
        }
        if (CpuPrivate::readCacheLineSize(contentOf(folder + "/coherency_line_size"), expected)) {
            EXPECT_EQ(Cpu::getDevice().getCacheLineSize(i), expected) << i;
        }
    }
}

TEST_F(CpuTest, hasNoCacheBeyondTheFour)
{
    for (int const index : {-1, 4, 7, 1 << 30}) {
        EXPECT_EQ(Cpu::getDevice().getCacheSize(index), 0u) << index;
        EXPECT_EQ(Cpu::getDevice().getCacheLineSize(index), 0u) << index;
    }
}

TEST_F(CpuTest, tellsAllInLabelledLines)
{
    std::istringstream info(toStdString(Cpu::getDevice().getInfo()));
    std::vector<std::string> lines;
    for (std::string line; std::getline(info, line);)
        lines.push_back(line);
    std::vector<std::string> const labels = {"[CPU name]: ",
                                             "[RAM Size]: ",
                                             "[Available RAM size]: ",
                                             "[Cores number]: ",
                                             "[Logical processors number]: ",
                                             "[L1 instruction cache size]: ",
                                             "[L1 instruction cache line size]: ",
                                             "[L1 data cache size]: ",
                                             "[L1 data cache line size]: ",
                                             "[L2 cache size]: ",
                                             "[L2 cache line size]: ",
                                             "[L3 cache size]: ",
                                             "[L3 cache line size]: ",
                                             "[MMX]: ",
                                             "[SSE level]: ",
                                             "[AVX level]: "};
    ASSERT_EQ(lines.size(), labels.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i].substr(0, labels[i].size()), labels[i]);
    EXPECT_EQ(lines[1], "[RAM Size]: " + std::to_string(Cpu::getDevice().getTotalMemory() >> 20) + " MB");
}

} // namespace
} // namespace qel::devices
