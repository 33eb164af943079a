#pragma once

#include "Fuzz/Require.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace qel::fuzz {

/// A file in memory, which has a path as any other.
class MemoryFile
{
public:
    MemoryFile()
        : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC))
        , m_path("/proc/self/fd/" + std::to_string(m_descriptor))
    {
        require(m_descriptor >= 0, "a file in memory can be made");
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    void assign(std::uint8_t const* data, std::size_t size) const
    {
        require(ftruncate(m_descriptor, 0) == 0, "the file can be emptied");
        require(pwrite(m_descriptor, data, size, 0) == static_cast<ssize_t>(size), "the file can be written");
    }
    std::string content() const
    {
        std::string bytes(static_cast<std::size_t>(lseek(m_descriptor, 0, SEEK_END)), '\0');
        require(pread(m_descriptor, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
                "the file can be read");
        return bytes;
    }
    char const* path() const { return m_path.c_str(); }

private:
    int m_descriptor;
    std::string m_path;
};

} // namespace qel::fuzz
