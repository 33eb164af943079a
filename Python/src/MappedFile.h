#pragma once

#include <atomic>
#include <string>

namespace binding {

/// A file in the address space, shared with the disk, of which only a bounded part stays in memory.
///
/// Whoever reads or writes through the mapping tells how much; from time to time what is mapped is given back to the
/// system, which keeps what was written and may keep all of it in its cache. Nobody has to be stopped for that: who is
/// just reading finds the page again.
class MappedFile
{
public:
    /// Maps the whole file. A new one is made, or an old one cut, where `newSize` is not 0; its bytes are 0, and take
    /// no room on the disk until they are written. Throws std::system_error.
    MappedFile(std::string const& path, bool isWritable, unsigned long newSize);
    MappedFile(MappedFile const&) = delete;
    MappedFile& operator=(MappedFile const&) = delete;
    ~MappedFile();

    /// The mapping that this address lies in, or null.
    static MappedFile* at(unsigned char const* address);

    unsigned char* data() const { return m_data; }
    unsigned long size() const { return m_size; }
    bool isWritable() const { return m_isWritable; }

    /// Counts bytes that were read or written; gives memory back where there were many. From any thread.
    void touched(unsigned long bytes)
    {
        // Whoever asks for less gets a page all the same.
        unsigned long const counted = bytes < page ? page : bytes;
        if (m_touched.fetch_add(counted, std::memory_order_relaxed) + counted > bytesKept)
            giveBack();
    }

    /// Gives back what is mapped.
    void giveBack();

    /// Writes what is not yet on the disk.
    void flush();

    /// How many bytes may be touched before memory is given back.
    static unsigned long const bytesKept = 64ul << 20;
    static unsigned long const page = 4096;

private:
    std::string m_path;
    unsigned char* m_data = nullptr;
    unsigned long m_size = 0;
    bool m_isWritable;
    std::atomic<unsigned long> m_touched{0};
};

} // namespace binding
