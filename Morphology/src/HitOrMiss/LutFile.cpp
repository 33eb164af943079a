#include "Morphology/private/LutFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace qel::morphology {

namespace {

constexpr std::size_t headerSize = 4;

class File
{
public:
    explicit File(char const* path)
        : m_path(path)
        // A pipe without a writer would wait.
        , m_descriptor(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
        if (m_descriptor < 0)
            failWith(errno);
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ~File() { ::close(m_descriptor); }

    void checkIsRegularOfSize(std::size_t size) const
    {
        struct stat status;
        if (::fstat(m_descriptor, &status) != 0)
            failWith(errno);
        if (S_ISDIR(status.st_mode))
            failWith(EISDIR);
        if (!S_ISREG(status.st_mode))
            fail("not a regular file");
        if (static_cast<std::size_t>(status.st_size) != size)
            fail("its size is " + std::to_string(status.st_size) + " bytes instead of " + std::to_string(size));
    }

    /// Not by a mapping: to touch one beyond the end of a file that has become shorter ends the process.
    void read(void* target, std::size_t size, std::size_t offset) const
    {
        auto* const bytes = static_cast<char*>(target);
        for (std::size_t done = 0; done < size;) {
            ssize_t const count = ::pread(m_descriptor, bytes + done, size - done, static_cast<off_t>(offset + done));
            if (count == 0)
                fail("it ends too early");
            if (count > 0)
                done += static_cast<std::size_t>(count);
            else if (errno != EINTR)
                failWith(errno);
        }
    }

private:
    [[noreturn]] void failWith(int error) const { throw std::system_error(error, std::generic_category(), m_path); }
    [[noreturn]] void fail(std::string const& reason) const { throw std::runtime_error(m_path + ": " + reason); }

    std::string m_path;
    int m_descriptor;
};

} // namespace

void readLutFile(char const* path, void* table, std::size_t size)
{
    File const file(path);
    file.checkIsRegularOfSize(size + headerSize);
    file.read(table, size, headerSize);
}

} // namespace qel::morphology
