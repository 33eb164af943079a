#include "MappedFile.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace binding {

namespace {

// All that are open. Never destroyed: an array may outlive static objects.
struct Registry
{
    std::atomic<unsigned long> count{0};
    std::mutex mutex;
    std::vector<MappedFile*> files;
};

Registry& registry()
{
    static auto& only = *new Registry;
    return only;
}

[[noreturn]] void fail(std::string const& path) { throw std::system_error(errno, std::generic_category(), path); }

} // namespace

MappedFile::MappedFile(std::string const& path, bool isWritable, unsigned long newSize)
    : m_path(path)
    , m_isWritable(isWritable)
{
    int const flags = (isWritable ? O_RDWR : O_RDONLY) | (newSize ? O_CREAT | O_TRUNC : 0) | O_CLOEXEC;
    int const file = ::open(path.c_str(), flags, 0666);
    if (file < 0)
        fail(path);
    struct stat status = {};
    bool const isSized =
        (newSize == 0 || ftruncate(file, static_cast<off_t>(newSize)) == 0) && fstat(file, &status) == 0;
    m_size = static_cast<unsigned long>(status.st_size);
    void* place = MAP_FAILED;
    if (isSized && m_size > 0)
        place = mmap(nullptr, m_size, isWritable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, file, 0);
    int const error = isSized && m_size == 0 ? EINVAL : errno;
    close(file);
    if (place == MAP_FAILED) {
        errno = error;
        fail(path);
    }
    m_data = static_cast<unsigned char*>(place);
    std::lock_guard const guard(registry().mutex);
    registry().files.push_back(this);
    ++registry().count;
}

MappedFile::~MappedFile()
{
    {
        std::lock_guard const guard(registry().mutex);
        auto& files = registry().files;
        files.erase(std::find(files.begin(), files.end(), this));
        --registry().count;
    }
    munmap(m_data, m_size);
}

MappedFile* MappedFile::at(unsigned char const* address)
{
    // Nearly always there is none, and a small image has no time to look.
    if (registry().count.load(std::memory_order_acquire) == 0)
        return nullptr;
    std::lock_guard const guard(registry().mutex);
    for (MappedFile* const file : registry().files) {
        if (address >= file->m_data && address < file->m_data + file->m_size)
            return file;
    }
    return nullptr;
}

void MappedFile::giveBack()
{
    m_touched.store(0, std::memory_order_relaxed);
    // Pages of a shared mapping go back to the cache of the system, with all that was written.
    madvise(m_data, m_size, MADV_DONTNEED);
}

void MappedFile::flush()
{
    if (m_isWritable && msync(m_data, m_size, MS_SYNC) != 0)
        fail(m_path);
}

} // namespace binding
