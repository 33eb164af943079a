#pragma once

#include <qel/devices/Cpu.h>

#include <libcpuid.h>

#include <map>
#include <string>
#include <string_view>

namespace qel::devices {

/// What stands behind Cpu, and the one place that asks libcpuid and the files of Linux. What reads a text or a record
/// is a function of that text or record alone.
class CpuPrivate
{
public:
    static constexpr int numOfCaches = 4;

    CpuPrivate();

    /// Reads the machine and publishes the description. A second call returns at once.
    static void initClass();
    static void exitClass();
    static CpuPrivate const& getInstance();

    /// Asks for the raw records and their meaning, by functions with the signatures of libcpuid. Returns the lines that
    /// belong on the standard error stream; empty if all went well. A processor that is not identified leaves zeros.
    std::string identify(int (*getRawData)(cpu_raw_data_t*), int (*identifyRaw)(cpu_raw_data_t*, cpu_id_t*),
                         char const* (*lastError)());
    /// Name, levels, counts and caches from an identification record. A negative number counts as 0.
    void takeIdentification(cpu_id_t const& record);
    /// Replaces sizes and line sizes of the caches by those of the files below `folder`, where there are any.
    void initClassUncommon(std::string const& folder);

    /// The labelled lines of Cpu::getInfo for an amount of available memory; null if that is not known.
    std::string getInfo(unsigned long const* availableMemory) const;
    unsigned int getCacheSize(int index) const;
    unsigned int getCacheLineSize(int index) const;

    /// `flags`: one byte for each CPU_FEATURE_ constant of libcpuid, 0 or 1.
    static unsigned int getSSELevel(unsigned char const* flags);
    static unsigned int getAVXLevel(unsigned char const* flags);

    /// Lines of a name, a colon and a number; a number before "kB" is shifted left by 10. Other lines are left out.
    static std::map<std::string, unsigned long> fetchMemInfos(std::string_view text);
    /// Bytes of memory, and of free memory with buffers and page cache. False, and nothing written, if the text lacks
    /// one of the entries.
    static bool getTotalAndFreeMem(std::string_view text, unsigned long& total, unsigned long& free);
    /// The same of the machine's own text.
    static bool getTotalAndFreeMem(unsigned long& total, unsigned long& free);

    /// The process's own memory in pages, by name: "size", "resident", "shared", "text", "lib", "data", "dt". The text
    /// of a missing entry is "Unknown".
    static std::map<std::string, std::string> fetchProcessMemInfos(std::string_view text);
    static std::map<std::string, std::string> fetchProcessMemInfos();

    /// The text of a cache's size file, such as "32K", in kilobytes. K, M and G in either case are known as units; a
    /// number without one counts bytes. False, and nothing written, for any other text.
    static bool readCacheSize(std::string_view text, unsigned int& kilobytes);
    /// The text of a cache's line size file. False, and nothing written, if it is no number.
    static bool readCacheLineSize(std::string_view text, unsigned int& bytes);

    Cpu device;
    std::string deviceName;
    unsigned long totalMemory = 0;
    unsigned int sseLevel = 0;
    bool sse = false;
    unsigned int avxLevel = 0;
    bool avx = false;
    unsigned int cacheSizes[numOfCaches] = {};
    unsigned int cacheLineSizes[numOfCaches] = {};
    unsigned int numOfCores = 0;
    unsigned int logicalProcessors = 0;
    cpu_raw_data_t rawData{};
    cpu_id_t identification{};
};

} // namespace qel::devices
