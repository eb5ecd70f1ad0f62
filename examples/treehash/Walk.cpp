#include "Walk.h"

#include "Platform.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace treehash
{

namespace
{

namespace fs = std::filesystem;

void ReportError(Report &report, std::string const &name, std::error_code error)
{
    try
    {
        ThrowSystemError(error);
    }
    catch (VantrelException const &exception)
    {
        report.Failure(name, exception);
    }
}

/// The path as it begins the names of its files.
std::string NameOfArgument(std::string const &path)
{
    std::string name = path;
    auto const doubled = [](char first, char second) { return first == '/' && second == '/'; };
    name.erase(std::unique(name.begin(), name.end(), doubled), name.end());
    return name == "-" ? "./-" : name; // the readers of manifests take "-" for standard input
}

std::string NameInFolder(std::string const &folder, std::string const &name)
{
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

/// An unknown size is 0: the file is about to be reported when it is opened.
std::uintmax_t SizeOrZero(fs::directory_entry const &entry)
{
    std::error_code error;
    std::uintmax_t const size = entry.file_size(error);
    return error ? 0 : size;
}

class Walk
{
public:
    explicit Walk(Report &report) : m_report(report) {}

    void AddArgument(std::string const &path)
    {
        std::string name = NameOfArgument(path);
        std::error_code error;
        fs::path const place = PathFromName(name);
        fs::file_status const status = fs::status(place, error);
        if (fs::is_directory(status))
            AddTree(std::move(name));
        else if (fs::is_regular_file(status))
            m_files.push_back({std::move(name), SizeOrZero(fs::directory_entry(place, error))});
        else if (error)
            ReportError(m_report, name, error);
        else
            m_report.Failure(name, VantrelException("Not a regular file or a folder"));
    }

    std::vector<FoundFile> TakeFiles() { return std::move(m_files); }

private:
    /// Folders wait in a list rather than on the stack: only one is open at a time, however deep the tree.
    void AddTree(std::string root)
    {
        m_folders.push_back(std::move(root));
        while (!m_folders.empty())
        {
            std::string const folder = std::move(m_folders.back());
            m_folders.pop_back();
            AddFolder(folder);
        }
    }

    void AddFolder(std::string const &folder)
    {
        std::error_code error;
        fs::directory_iterator entry(PathFromName(folder), error);
        while (!error && entry != fs::directory_iterator())
        {
            AddEntry(folder, *entry);
            entry.increment(error);
        }
        if (error)
            ReportError(m_report, folder, error);
    }

    void AddEntry(std::string const &folder, fs::directory_entry const &entry)
    {
        std::string name = NameInFolder(folder, NameFromPath(entry.path().filename()));
        std::error_code error;
        if (entry.is_symlink(error))
            return;
        if (entry.is_directory(error))
            m_folders.push_back(std::move(name));
        else if (entry.is_regular_file(error))
            m_files.push_back({std::move(name), SizeOrZero(entry)});
        else if (error)
            ReportError(m_report, name, error);
    }

    Report &m_report;
    std::vector<std::string> m_folders;
    std::vector<FoundFile> m_files;
};

} // namespace

std::vector<FoundFile> FindFiles(std::vector<std::string> const &paths, Report &report)
{
    Walk walk(report);
    for (std::string const &path : paths)
        walk.AddArgument(path);

    std::vector<FoundFile> files = walk.TakeFiles();
    // std::string compares its characters as unsigned bytes.
    std::sort(files.begin(), files.end(),
              [](FoundFile const &first, FoundFile const &second) { return first.name < second.name; });
    auto const sameName = [](FoundFile const &first, FoundFile const &second)
    { return first.name == second.name; };
    files.erase(std::unique(files.begin(), files.end(), sameName), files.end());
    return files;
}

} // namespace treehash
