#include "Core/private/CpuPrivate.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>

namespace qel::devices {

namespace {

CpuPrivate* instance = nullptr;

/// What can be read of a file.
std::string readFile(std::string const& path)
{
    // Not a C++ stream: those throw where a file opens and cannot be read.
    std::string text;
    if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        while (std::size_t const count = std::fread(buffer, 1, sizeof(buffer), file))
            text.append(buffer, count);
        std::fclose(file);
    }
    return text;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    auto const first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Takes the number at the start of `text` off it. False if there is none, or none that fits.
bool takeNumber(std::string_view& text, unsigned long& number)
{
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool shiftLeft(unsigned long& number, int bits)
{
    if (number > std::numeric_limits<unsigned long>::max() >> bits)
        return false;
    number <<= bits;
    return true;
}

unsigned int notNegative(int number) { return number < 0 ? 0u : static_cast<unsigned int>(number); }

} // namespace

CpuPrivate::CpuPrivate()
    : device(this)
{}

void CpuPrivate::initClass()
{
    if (instance)
        return;
    auto* description = new CpuPrivate;
    std::string const errors = description->identify(cpuid_get_raw_data, cpu_identify, cpuid_error);
    // Not a C++ stream: the library may be loaded before they are set up.
    std::fputs(errors.c_str(), stderr);
    unsigned long unused = 0;
    getTotalAndFreeMem(description->totalMemory, unused);
    description->initClassUncommon("/sys/devices/system/cpu/cpu0/cache");
    instance = description;
}

void CpuPrivate::exitClass()
{
    delete instance;
    instance = nullptr;
}

CpuPrivate const& CpuPrivate::getInstance()
{
    static CpuPrivate const unknown;
    return instance ? *instance : unknown;
}

std::string CpuPrivate::identify(int (*getRawData)(cpu_raw_data_t*), int (*identifyRaw)(cpu_raw_data_t*, cpu_id_t*),
                                 char const* (*lastError)())
{
    std::string errors;
    if (getRawData(&rawData) != 0)
        errors.append("Sorry, cannot get the CPUID raw data.\nError: ").append(lastError()).append("\n");
    cpu_id_t record{};
    if (identifyRaw(&rawData, &record) != 0) {
        errors.append("Sorrry, CPU identification failed.\nError: ").append(lastError()).append("\n");
        // What a failed identification leaves in its record is no ground to pick a vector path.
        record = cpu_id_t{};
    }
    takeIdentification(record);
    return errors;
}

void CpuPrivate::takeIdentification(cpu_id_t const& record)
{
    identification = record;
    deviceName.assign(record.brand_str, strnlen(record.brand_str, sizeof(record.brand_str)));
    sseLevel = getSSELevel(record.flags);
    sse = sseLevel > 0;
    avxLevel = getAVXLevel(record.flags);
    avx = avxLevel > 0;
    cacheSizes[0] = notNegative(record.l1_instruction_cache);
    cacheSizes[1] = notNegative(record.l1_data_cache);
    cacheSizes[2] = notNegative(record.l2_cache);
    cacheSizes[3] = notNegative(record.l3_cache);
    cacheLineSizes[0] = notNegative(record.l1_instruction_cacheline);
    cacheLineSizes[1] = notNegative(record.l1_data_cacheline);
    cacheLineSizes[2] = notNegative(record.l2_cacheline);
    cacheLineSizes[3] = notNegative(record.l3_cacheline);
    numOfCores = notNegative(record.num_cores);
    logicalProcessors = notNegative(record.num_logical_cpus);
}

void CpuPrivate::initClassUncommon(std::string const& folder)
{
    for (int i = 0; i < numOfCaches; ++i) {
        std::string const cache = folder + "/index" + std::to_string(i);
        readCacheSize(readFile(cache + "/size"), cacheSizes[i]);
        readCacheLineSize(readFile(cache + "/coherency_line_size"), cacheLineSizes[i]);
    }
}

unsigned int CpuPrivate::getCacheSize(int index) const
{
    return index < 0 || index >= numOfCaches ? 0 : cacheSizes[index];
}

unsigned int CpuPrivate::getCacheLineSize(int index) const
{
    return index < 0 || index >= numOfCaches ? 0 : cacheLineSizes[index];
}

std::string CpuPrivate::getInfo(unsigned long const* availableMemory) const
{
    constexpr char const* unknown = "Unknown";
    auto const megabytes = [](unsigned long bytes) { return std::to_string(bytes >> 20) + " MB"; };
    std::string text;
    auto const line = [&](std::string const& label, std::string const& value) {
        text += "[" + label + "]: " + value + "\n";
    };
    line("CPU name", deviceName.empty() ? unknown : deviceName);
    line("RAM Size", totalMemory == 0 ? unknown : megabytes(totalMemory));
    line("Available RAM size", availableMemory ? megabytes(*availableMemory) : unknown);
    line("Cores number", std::to_string(numOfCores));
    line("Logical processors number", std::to_string(logicalProcessors));
    char const* const caches[numOfCaches] = {"L1 instruction", "L1 data", "L2", "L3"};
    for (int i = 0; i < numOfCaches; ++i) {
        line(std::string(caches[i]) + " cache size", std::to_string(cacheSizes[i]) + " KB");
        line(std::string(caches[i]) + " cache line size", std::to_string(cacheLineSizes[i]) + " bytes");
    }
    line("MMX", identification.flags[CPU_FEATURE_MMX] ? "available" : "not available");
    line("SSE level", std::to_string(sseLevel / 16) + "." + std::to_string(sseLevel % 16));
    line("AVX level", std::to_string(avxLevel));
    return text;
}

unsigned int CpuPrivate::getSSELevel(unsigned char const* flags)
{
    if (flags[CPU_FEATURE_SSE4_2])
        return 0x42;
    if (flags[CPU_FEATURE_SSE4_1])
        return 0x41;
    if (flags[CPU_FEATURE_SSSE3])
        return 0x31;
    if (flags[CPU_FEATURE_PNI]) // the first name of SSE3
        return 0x30;
    if (flags[CPU_FEATURE_SSE2])
        return 0x20;
    return flags[CPU_FEATURE_SSE] ? 0x10 : 0;
}

unsigned int CpuPrivate::getAVXLevel(unsigned char const* flags)
{
    if (flags[CPU_FEATURE_AVX2])
        return 2;
    return flags[CPU_FEATURE_AVX] ? 1 : 0;
}

std::map<std::string, unsigned long> CpuPrivate::fetchMemInfos(std::string_view text)
{
    std::map<std::string, unsigned long> entries;
    while (!text.empty()) {
        auto const end = text.find('\n');
        std::string_view const line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);

        auto const colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        std::string_view rest = trimmed(line.substr(colon + 1));
        unsigned long number = 0;
        if (!takeNumber(rest, number))
            continue;
        rest = trimmed(rest);
        if (rest == "kB" ? shiftLeft(number, 10) : rest.empty())
            entries[std::string(trimmed(line.substr(0, colon)))] = number;
    }
    return entries;
}

bool CpuPrivate::getTotalAndFreeMem(std::string_view text, unsigned long& total, unsigned long& free)
{
    auto const entries = fetchMemInfos(text);
    auto const memTotal = entries.find("MemTotal");
    auto const memFree = entries.find("MemFree");
    auto const buffers = entries.find("Buffers");
    auto const cached = entries.find("Cached");
    for (auto const& entry : {memTotal, memFree, buffers, cached})
        if (entry == entries.end())
            return false;
    total = memTotal->second;
    free = memFree->second + buffers->second + cached->second;
    return true;
}

bool CpuPrivate::getTotalAndFreeMem(unsigned long& total, unsigned long& free)
{
    return getTotalAndFreeMem(readFile("/proc/meminfo"), total, free);
}

std::map<std::string, std::string> CpuPrivate::fetchProcessMemInfos(std::string_view text)
{
    std::map<std::string, std::string> entries;
    for (char const* name : {"size", "resident", "shared", "text", "lib", "data", "dt"}) {
        text = trimmed(text);
        unsigned long pages = 0;
        entries[name] = takeNumber(text, pages) ? std::to_string(pages) : "Unknown";
    }
    return entries;
}

std::map<std::string, std::string> CpuPrivate::fetchProcessMemInfos()
{
    return fetchProcessMemInfos(readFile("/proc/self/statm"));
}

bool CpuPrivate::readCacheSize(std::string_view text, unsigned int& kilobytes)
{
    text = trimmed(text);
    unsigned long size = 0;
    if (!takeNumber(text, size) || text.size() > 1)
        return false;
    switch (text.empty() ? '\0' : text.front()) {
    case '\0':
        size >>= 10;
        break;
    case 'K':
    case 'k':
        break;
    case 'M':
    case 'm':
        if (!shiftLeft(size, 10))
            return false;
        break;
    case 'G':
    case 'g':
        if (!shiftLeft(size, 20))
            return false;
        break;
    default:
        return false;
    }
    if (size > std::numeric_limits<unsigned int>::max())
        return false;
    kilobytes = static_cast<unsigned int>(size);
    return true;
}

bool CpuPrivate::readCacheLineSize(std::string_view text, unsigned int& bytes)
{
    text = trimmed(text);
    unsigned long size = 0;
    if (!takeNumber(text, size) || !text.empty() || size > std::numeric_limits<unsigned int>::max())
        return false;
    bytes = static_cast<unsigned int>(size);
    return true;
}

} // namespace qel::devices
