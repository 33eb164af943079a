#include "Core/private/CpuPrivate.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace qel::devices {
namespace {

unsigned int sseLevelOf(std::initializer_list<cpu_feature_t> features)
{
    unsigned char flags[CPU_FLAGS_MAX] = {};
    for (cpu_feature_t const feature : features)
        flags[feature] = 1;
    return CpuPrivate::getSSELevel(flags);
}

TEST(CpuPrivateTest, takesTheHighestSseFlag)
{
    EXPECT_EQ(sseLevelOf({}), 0u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_MMX, CPU_FEATURE_AVX2}), 0u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSE}), 16u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSE, CPU_FEATURE_SSE2}), 32u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSE2, CPU_FEATURE_PNI}), 48u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_PNI, CPU_FEATURE_SSSE3}), 49u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSSE3, CPU_FEATURE_SSE4_1}), 65u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSE4_1, CPU_FEATURE_SSE4_2}), 66u);
    EXPECT_EQ(sseLevelOf({CPU_FEATURE_SSE4_2}), 66u);
}

TEST(CpuPrivateTest, takesTheHighestAvxFlag)
{
    unsigned char flags[CPU_FLAGS_MAX] = {};
    EXPECT_EQ(CpuPrivate::getAVXLevel(flags), 0u);
    flags[CPU_FEATURE_AVX] = 1;
    EXPECT_EQ(CpuPrivate::getAVXLevel(flags), 1u);
    flags[CPU_FEATURE_AVX2] = 1;
    EXPECT_EQ(CpuPrivate::getAVXLevel(flags), 2u);
}

char const* noError() { return "no error"; }
char const* someError() { return "nothing works"; }
int rawSucceeds(cpu_raw_data_t* raw)
{
    raw->basic_cpuid[0][0] = 42;
    return 0;
}
int rawFails(cpu_raw_data_t*) { return -1; }
int identifySucceeds(cpu_raw_data_t* raw, cpu_id_t* id)
{
    EXPECT_EQ(raw->basic_cpuid[0][0], 42u);
    std::strcpy(id->brand_str, "Some Processor 3000");
    id->flags[CPU_FEATURE_MMX] = id->flags[CPU_FEATURE_SSE4_1] = id->flags[CPU_FEATURE_AVX] = 1;
    id->num_cores = 6;
    id->num_logical_cpus = 12;
    id->l1_instruction_cache = 16;
    id->l1_data_cache = 48;
    id->l2_cache = 2048;
    id->l3_cache = -1;
    id->l1_instruction_cacheline = 32;
    id->l1_data_cacheline = 64;
    id->l2_cacheline = -1;
    id->l3_cacheline = 128;
    return 0;
}
int identifyFails(cpu_raw_data_t*, cpu_id_t* id)
{
    std::strcpy(id->brand_str, "half read");
    id->flags[CPU_FEATURE_SSE4_2] = id->flags[CPU_FEATURE_AVX2] = 1;
    id->num_cores = 3;
    return -1;
}

TEST(CpuPrivateTest, takesOverWhatIsIdentified)
{
    CpuPrivate cpu;
    EXPECT_EQ(cpu.identify(rawSucceeds, identifySucceeds, noError), "");
    EXPECT_STREQ(cpu.device.getDeviceName().c_str(), "Some Processor 3000");
    EXPECT_TRUE(cpu.device.hasMMX());
    EXPECT_FALSE(cpu.device.hasMMXExt());
    EXPECT_TRUE(cpu.device.hasSSE());
    EXPECT_EQ(cpu.device.getSSELevel(), 65u);
    EXPECT_TRUE(cpu.device.hasAVX());
    EXPECT_EQ(cpu.device.getAVXLevel(), 1u);
    EXPECT_EQ(cpu.device.getNumOfCores(), 6u);
    EXPECT_EQ(cpu.device.getLogicalProcessors(), 12u);
    unsigned int const sizes[] = {16, 48, 2048, 0};
    unsigned int const lines[] = {32, 64, 0, 128};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(cpu.device.getCacheSize(i), sizes[i]) << i;
        EXPECT_EQ(cpu.device.getCacheLineSize(i), lines[i]) << i;
    }
}

TEST(CpuPrivateTest, printsAllThatItKnows)
{
    CpuPrivate cpu;
    cpu.identify(rawSucceeds, identifySucceeds, noError);
    cpu.totalMemory = (5ul << 30) + 1;
    unsigned long const available = (3ul << 20) - 1;
    EXPECT_EQ(cpu.getInfo(&available), "[CPU name]: Some Processor 3000\n"
                                       "[RAM Size]: 5120 MB\n"
                                       "[Available RAM size]: 2 MB\n"
                                       "[Cores number]: 6\n"
                                       "[Logical processors number]: 12\n"
                                       "[L1 instruction cache size]: 16 KB\n"
                                       "[L1 instruction cache line size]: 32 bytes\n"
                                       "[L1 data cache size]: 48 KB\n"
                                       "[L1 data cache line size]: 64 bytes\n"
                                       "[L2 cache size]: 2048 KB\n"
                                       "[L2 cache line size]: 0 bytes\n"
                                       "[L3 cache size]: 0 KB\n"
                                       "[L3 cache line size]: 128 bytes\n"
                                       "[MMX]: available\n"
                                       "[SSE level]: 4.1\n"
                                       "[AVX level]: 1\n");
}

TEST(CpuPrivateTest, leavesZerosWhereNothingIsIdentified)
{
    CpuPrivate cpu;
    EXPECT_EQ(cpu.identify(rawFails, identifyFails, someError), "Sorry, cannot get the CPUID raw data.\n"
                                                                "Error: nothing works\n"
                                                                "Sorrry, CPU identification failed.\n"
                                                                "Error: nothing works\n");
    EXPECT_STREQ(cpu.device.getDeviceName().c_str(), "");
    EXPECT_FALSE(cpu.device.hasSSE());
    EXPECT_EQ(cpu.device.getSSELevel(), 0u);
    EXPECT_FALSE(cpu.device.hasAVX());
    EXPECT_EQ(cpu.device.getAVXLevel(), 0u);
    EXPECT_EQ(cpu.device.getNumOfCores(), 0u);
    std::string const info = cpu.getInfo(nullptr);
    EXPECT_EQ(info.substr(0, info.find("[Cores")), "[CPU name]: Unknown\n"
                                                   "[RAM Size]: Unknown\n"
                                                   "[Available RAM size]: Unknown\n");
    EXPECT_NE(info.find("[MMX]: not available\n[SSE level]: 0.0\n[AVX level]: 0\n"), std::string::npos);
}

TEST(CpuPrivateTest, reportsTheFailedStepAlone)
{
    CpuPrivate cpu;
    EXPECT_EQ(cpu.identify(rawSucceeds, identifyFails, someError),
              "Sorrry, CPU identification failed.\nError: nothing works\n");
    EXPECT_EQ(cpu.identify(rawFails, identifySucceeds, someError),
              "Sorry, cannot get the CPUID raw data.\nError: nothing works\n");
    EXPECT_EQ(cpu.device.getSSELevel(), 65u);
}

TEST(CpuPrivateTest, readsABrandStringWithoutTerminator)
{
    cpu_id_t record{};
    std::memset(record.brand_str, 'x', sizeof(record.brand_str));
    CpuPrivate cpu;
    cpu.takeIdentification(record);
    EXPECT_EQ(cpu.deviceName, std::string(sizeof(record.brand_str), 'x'));
}

TEST(CpuPrivateTest, readsNamesAndNumbersOfAMemoryText)
{
    auto const entries = CpuPrivate::fetchMemInfos("MemTotal:       24684096 kB\n"
                                                   "HugePages_Total:       7\n"
                                                   "  Odd name  :\t12kB\r\n"
                                                   "no colon 5 kB\n"
                                                   "Nonsense: many kB\n"
                                                   "Negative: -3 kB\n"
                                                   "Empty:\n"
                                                   "\n"
                                                   "OtherUnit: 5 MB\n"
                                                   "TooBig: 99999999999999999999 kB\n"
                                                   "TooBigShifted: 18446744073709551615 kB\n"
                                                   "Last: 1 kB");
    std::map<std::string, unsigned long> const expected = {
        {"MemTotal", 24684096ul << 10}, {"HugePages_Total", 7}, {"Odd name", 12 << 10}, {"Last", 1 << 10}};
    EXPECT_EQ(entries, expected);
    EXPECT_TRUE(CpuPrivate::fetchMemInfos("").empty());
}

TEST(CpuPrivateTest, countsBuffersAndPageCacheAsFree)
{
    unsigned long total = 1;
    unsigned long free = 2;
    EXPECT_TRUE(CpuPrivate::getTotalAndFreeMem("Cached: 100 kB\nMemFree: 20 kB\nSwapCached: 5000 kB\nMemTotal: 900 kB\n"
                                               "MemAvailable: 7000 kB\nBuffers: 3 kB\n",
                                               total, free));
    EXPECT_EQ(total, 900u << 10);
    EXPECT_EQ(free, 123u << 10);
}

TEST(CpuPrivateTest, writesNothingWhereAMemoryEntryIsMissing)
{
    std::string const lines[] = {"MemTotal: 900 kB\n", "MemFree: 20 kB\n", "Buffers: 3 kB\n", "Cached: 100 kB\n"};
    for (int missing = 0; missing < 4; ++missing) {
        std::string text;
        for (int i = 0; i < 4; ++i)
            if (i != missing)
                text += lines[i];
        unsigned long total = 1;
        unsigned long free = 2;
        EXPECT_FALSE(CpuPrivate::getTotalAndFreeMem(text, total, free)) << missing;
        EXPECT_EQ(total, 1u);
        EXPECT_EQ(free, 2u);
        EXPECT_FALSE(
            CpuPrivate::getTotalAndFreeMem(text + lines[missing].substr(0, lines[missing].find(':') + 1), total, free))
            << missing;
        EXPECT_TRUE(CpuPrivate::getTotalAndFreeMem(text + lines[missing], total, free)) << missing;
    }
}

TEST(CpuPrivateTest, namesTheProcessesMemoryAndWhatIsUnknownOfIt)
{
    auto entries = CpuPrivate::fetchProcessMemInfos("765 416 388 5 0 123 0\n");
    std::map<std::string, std::string> const expected = {{"size", "765"}, {"resident", "416"}, {"shared", "388"},
                                                         {"text", "5"},   {"lib", "0"},        {"data", "123"},
                                                         {"dt", "0"}};
    EXPECT_EQ(entries, expected);
    entries = CpuPrivate::fetchProcessMemInfos("765 many");
    EXPECT_EQ(entries["size"], "765");
    for (char const* name : {"resident", "shared", "text", "lib", "data", "dt"})
        EXPECT_EQ(entries[name], "Unknown") << name;
    for (auto const& entry : CpuPrivate::fetchProcessMemInfos(""))
        EXPECT_EQ(entry.second, "Unknown") << entry.first;
}

TEST(CpuPrivateTest, readsTheProcessesMemoryOfThisProcess)
{
    EXPECT_GT(std::strtoul(CpuPrivate::fetchProcessMemInfos()["resident"].c_str(), nullptr, 10), 0u);
}

TEST(CpuPrivateTest, scalesCacheSizesByTheirUnit)
{
    auto const sizeOf = [](std::string_view text) {
        unsigned int kilobytes = 12345;
        EXPECT_TRUE(CpuPrivate::readCacheSize(text, kilobytes)) << text;
        return kilobytes;
    };
    EXPECT_EQ(sizeOf("32K\n"), 32u);
    EXPECT_EQ(sizeOf(" 32768K"), 32768u);
    EXPECT_EQ(sizeOf("0K"), 0u);
    EXPECT_EQ(sizeOf("8M\n"), 8192u);
    EXPECT_EQ(sizeOf("2G"), 2u << 20);
    EXPECT_EQ(sizeOf("8m"), 8192u);
    EXPECT_EQ(sizeOf("65536\n"), 64u);
}

TEST(CpuPrivateTest, leavesTheCacheSizeWhereTheTextIsNonsense)
{
    for (char const* text : {"", "\n", "K", "much", "-32K", "32KB", "32 K", "32X", "99999999999999999999K",
                             "18446744073709551615M", "4294967296K", "4194304G"}) {
        unsigned int kilobytes = 12345;
        EXPECT_FALSE(CpuPrivate::readCacheSize(text, kilobytes)) << text;
        EXPECT_EQ(kilobytes, 12345u) << text;
    }
}

TEST(CpuPrivateTest, readsLineSizesAsPlainNumbers)
{
    unsigned int bytes = 1;
    EXPECT_TRUE(CpuPrivate::readCacheLineSize("64\n", bytes));
    EXPECT_EQ(bytes, 64u);
    for (char const* text : {"", "wide", "64K", "-1", "4294967296"}) {
        EXPECT_FALSE(CpuPrivate::readCacheLineSize(text, bytes)) << text;
        EXPECT_EQ(bytes, 64u);
    }
}

class CacheFolder
{
public:
    CacheFolder()
    {
        char name[] = "/tmp/qel_cache_XXXXXX";
        path = mkdtemp(name);
    }
    ~CacheFolder() { std::filesystem::remove_all(path); }
    void write(std::string const& file, std::string const& text)
    {
        std::filesystem::path const full = std::filesystem::path(path) / file;
        std::filesystem::create_directories(full.parent_path());
        std::ofstream(full) << text;
    }
    std::string path;
};

TEST(CpuPrivateTest, keepsTheIdentifiedCachesWhereTheSystemHasNoFiles)
{
    CpuPrivate cpu;
    cpu.identify(rawSucceeds, identifySucceeds, noError);
    cpu.initClassUncommon("/nonexistent/cache");
    CacheFolder const empty;
    cpu.initClassUncommon(empty.path);
    EXPECT_EQ(cpu.getCacheSize(0), 16u);
    EXPECT_EQ(cpu.getCacheSize(1), 48u);
    EXPECT_EQ(cpu.getCacheSize(2), 2048u);
    EXPECT_EQ(cpu.getCacheLineSize(3), 128u);
}

TEST(CpuPrivateTest, replacesTheIdentifiedCachesIndexByIndex)
{
    CacheFolder folder;
    folder.write("index0/size", "24K\n");
    folder.write("index1/coherency_line_size", "16\n");
    folder.write("index2/size", "nonsense");
    folder.write("index2/coherency_line_size", "256");
    folder.write("index3/size", "32M\n");
    // A folder where a file is expected opens, and cannot be read.
    folder.write("index1/size/file", "1K");
    folder.write("index4/size", "77K\n");
    CpuPrivate cpu;
    cpu.identify(rawSucceeds, identifySucceeds, noError);
    cpu.initClassUncommon(folder.path);
    unsigned int const sizes[] = {24, 48, 2048, 32768};
    unsigned int const lines[] = {32, 16, 256, 128};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(cpu.getCacheSize(i), sizes[i]) << i;
        EXPECT_EQ(cpu.getCacheLineSize(i), lines[i]) << i;
    }
}

} // namespace
} // namespace qel::devices
