#pragma once

#include <OpenImageIO/filesystem.h>

#include <string>

namespace host {

/// The file behind a writer of OpenImageIO. Most writers do not look at what closing a buffered file says, so that a
/// full disk passes unseen, and some crash when a write fails. This file remembers its first failure, and the writer
/// never hears of it: what follows is dropped.
class CheckedFile : public OIIO::Filesystem::IOProxy
{
public:
    explicit CheckedFile(std::string const& path);
    ~CheckedFile() override;

    char const* proxytype() const override { return "checked"; }
    void close() override;
    bool seek(std::int64_t offset) override;
    std::size_t read(void* buffer, std::size_t size) override;
    std::size_t write(void const* buffer, std::size_t size) override;
    std::size_t pread(void* buffer, std::size_t size, std::int64_t offset) override;
    std::size_t pwrite(void const* buffer, std::size_t size, std::int64_t offset) override;
    std::size_t size() const override;
    void flush() const override;

    bool hasFailed() const { return m_failure != 0; }

    /// Writes out what is left, and throws HostError with the first failure of all.
    void finish();

private:
    void writeOut() const;

    int m_file;
    std::int64_t m_end = 0;
    std::int64_t mutable m_writtenAt = 0; ///< where m_pending belongs
    std::string mutable m_pending;
    int mutable m_failure = 0;
};

} // namespace host
