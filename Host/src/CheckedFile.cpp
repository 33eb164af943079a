#include "CheckedFile.h"

#include "Errors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

std::size_t const pendingLimit = 1 << 20;

} // namespace

CheckedFile::CheckedFile(std::string const& path)
    : IOProxy(path, Write)
    , m_file(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
{
    if (m_file < 0)
        m_failure = errno;
}

CheckedFile::~CheckedFile()
{
    if (m_file >= 0)
        ::close(m_file);
}

void CheckedFile::close() { writeOut(); }

bool CheckedFile::seek(std::int64_t offset)
{
    if (offset < 0)
        return false;
    m_pos = offset;
    return true;
}

std::size_t CheckedFile::write(void const* buffer, std::size_t size)
{
    std::size_t const written = pwrite(buffer, size, m_pos);
    m_pos += static_cast<std::int64_t>(written);
    return written;
}

std::size_t CheckedFile::read(void* buffer, std::size_t size)
{
    std::size_t const count = pread(buffer, size, m_pos);
    m_pos += static_cast<std::int64_t>(count);
    return count;
}

std::size_t CheckedFile::pwrite(void const* buffer, std::size_t size, std::int64_t offset)
{
    if (offset != m_writtenAt + static_cast<std::int64_t>(m_pending.size())) {
        writeOut();
        m_writtenAt = offset;
    }
    m_pending.append(static_cast<char const*>(buffer), size);
    m_end = std::max(m_end, offset + static_cast<std::int64_t>(size));
    if (m_pending.size() >= pendingLimit)
        writeOut();
    return size;
}

std::size_t CheckedFile::pread(void* buffer, std::size_t size, std::int64_t offset)
{
    writeOut();
    ssize_t const count = ::pread(m_file, buffer, size, offset);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::size_t CheckedFile::size() const { return static_cast<std::size_t>(m_end); }

void CheckedFile::flush() const { writeOut(); }

void CheckedFile::writeOut() const
{
    char const* next = m_pending.data();
    std::size_t left = m_pending.size();
    while (left > 0 && m_failure == 0) {
        ssize_t const count = ::pwrite(m_file, next, left, m_writtenAt);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            m_failure = count < 0 ? errno : ENOSPC;
            break;
        }
        next += count;
        left -= static_cast<std::size_t>(count);
        m_writtenAt += count;
    }
    m_writtenAt += static_cast<std::int64_t>(left);
    m_pending.clear();
}

void CheckedFile::finish()
{
    writeOut();
    if (m_file >= 0 && ::close(m_file) != 0 && m_failure == 0)
        m_failure = errno;
    m_file = -1;
    if (m_failure != 0)
        throw HostError(std::strerror(m_failure));
}

} // namespace host
