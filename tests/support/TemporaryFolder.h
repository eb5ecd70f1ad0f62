/// @file
/// A folder for the files of one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// Is made, and removed with all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::random_device random;
        do
            m_path = std::filesystem::temp_directory_path() / ("vansys-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_path));
    }

    TemporaryFolder(TemporaryFolder const &) = delete;
    TemporaryFolder &operator=(TemporaryFolder const &) = delete;

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::filesystem::path const &Path() const { return m_path; }

    /// The number of files and folders in it.
    auto Count() const { return std::distance(std::filesystem::directory_iterator(m_path), {}); }

    /// The whole of a file.
    static std::string Contents(std::filesystem::path const &file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path m_path;
};
