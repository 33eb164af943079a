#pragma once

#include <string>
#include <vector>

namespace host {

/// The files that a command writes. Each is written under a temporary name beside its place; `commit` moves all of them
/// to their places. What was not committed is removed, so that a failed command leaves older files as they were.
class Outputs
{
public:
    Outputs() = default;
    Outputs(Outputs const&) = delete;
    Outputs& operator=(Outputs const&) = delete;
    ~Outputs();

    /// Checks before the work begins that the file can be written. Throws UsageError where two outputs have the same
    /// path, HostError where the folder or what stands at the path does not allow it.
    void expect(std::string const& path);

    /// The name under which to write the file that belongs at `path`. It has the same extension.
    std::string temporaryFor(std::string const& path);

    /// Moves all files to their places. Throws HostError.
    void commit();

private:
    struct File
    {
        std::string temporary;
        std::string place;
    };

    std::vector<std::string> m_expected;
    std::vector<File> m_files;
};

} // namespace host
