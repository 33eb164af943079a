#include "Outputs.h"

#include "Errors.h"
#include "Signals.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace fs = std::filesystem;

namespace {

std::string systemText(int error) { return std::strerror(error); }

// The place behind symbolic links, so that a link stays one.
fs::path placeOf(std::string const& path)
{
    std::error_code error;
    fs::path const place = fs::weakly_canonical(fs::absolute(path), error);
    return error ? fs::path(path) : place;
}

fs::path folderOf(fs::path const& place)
{
    fs::path const folder = place.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

// What is in the buffers of the system goes to the disk, which may still be full.
void flushToDisk(std::string const& path)
{
    int const file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        throw HostError("cannot write the file " + path + ": " + systemText(errno));
    int const status = fsync(file);
    int const error = errno;
    close(file);
    // Some file systems know no fsync; that is no failure to write.
    if (status != 0 && error != EINVAL && error != ENOTSUP && error != EROFS)
        throw HostError("cannot write the file " + path + ": " + systemText(error));
}

} // namespace

Outputs::~Outputs()
{
    for (File const& file : m_files) {
        unlink(file.temporary.c_str());
        signals::releaseFile(file.temporary);
    }
}

void Outputs::expect(std::string const& path)
{
    fs::path const place = placeOf(path);
    if (std::find(m_expected.begin(), m_expected.end(), place.string()) != m_expected.end())
        throw UsageError("two outputs have the path " + path);
    m_expected.push_back(place.string());

    struct stat status = {};
    if (stat(place.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw HostError("cannot write the file " + path + ": it exists and is not a regular file");
    fs::path const folder = folderOf(place);
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        throw HostError("cannot write the file " + path + ": " + systemText(errno));
}

std::string Outputs::temporaryFor(std::string const& path)
{
    fs::path const place = placeOf(path);
    fs::path const folder = folderOf(place);
    // Names have a limit; the extension tells the format, so it is the end that stays.
    std::string name = place.filename().string();
    if (name.size() > 100)
        name.erase(0, name.size() - 100);
    std::string temporary;
    for (int attempt = 0;; ++attempt) {
        temporary = (folder / (".quelide-" + std::to_string(getpid()) + "-" + std::to_string(m_files.size()) + "-" +
                               std::to_string(attempt) + "-" + name))
                        .string();
        struct stat status = {};
        if (lstat(temporary.c_str(), &status) != 0)
            break;
    }
    signals::guardFile(temporary);
    m_files.push_back({temporary, place.string()});
    return temporary;
}

void Outputs::commit()
{
    for (File const& file : m_files) {
        flushToDisk(file.temporary);
        struct stat older = {};
        if (stat(file.place.c_str(), &older) == 0)
            static_cast<void>(chmod(file.temporary.c_str(), older.st_mode & 07777));
    }
    signals::check();
    while (!m_files.empty()) {
        File const& file = m_files.front();
        if (std::rename(file.temporary.c_str(), file.place.c_str()) != 0)
            throw HostError("cannot write the file " + file.place + ": " + systemText(errno));
        signals::releaseFile(file.temporary);
        m_files.erase(m_files.begin());
    }
}

} // namespace host
