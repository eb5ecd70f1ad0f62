#include "Walk.h"

#include "Platform.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace treehash
{

namespace
{

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
    return path == "-" ? "./-" : path; // the readers of manifests take "-" for standard input
}

std::string NameInFolder(std::string const &folder, std::string const &name)
{
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

class Walk
{
public:
    explicit Walk(Report &report) : m_report(report) {}

    void AddArgument(std::string const &path)
    {
        std::string name = NameOfArgument(path);
        std::error_code error;
        FileStatus const status = StatusOf(name, error);
        if (status.kind == FileKind::Folder)
            AddTree(std::move(name));
        else if (status.kind == FileKind::Regular)
            m_files.push_back({std::move(name), status.size});
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
        VisitFolder(
            folder, [&](FolderEntry const &entry) { AddEntry(folder, entry); }, error);
        if (error)
            ReportError(m_report, folder, error);
    }

    void AddEntry(std::string const &folder, FolderEntry const &entry)
    {
        std::string name = NameInFolder(folder, entry.name);
        if (entry.status.kind == FileKind::Folder)
            m_folders.push_back(std::move(name));
        else if (entry.status.kind == FileKind::Regular)
            m_files.push_back({std::move(name), entry.status.size});
        else if (entry.error)
            ReportError(m_report, name, entry.error);
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
