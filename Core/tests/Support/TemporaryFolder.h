#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace qel::test {

/// A folder that goes away with the test, and all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder()
        : folder(testing::TempDir() + "quelide-XXXXXX")
    {
        if (mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string const& path() const { return folder; }
    /// The path of a file in the folder, whether it is there or not.
    std::string operator/(std::string const& name) const { return folder + '/' + name; }

private:
    std::string folder;
};

inline std::string readFile(std::string const& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot open " + path);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

inline void writeFile(std::string const& path, std::string const& content)
{
    std::ofstream stream(path, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!stream.flush())
        throw std::runtime_error("cannot write " + path);
}

} // namespace qel::test
