#include "Commands.h"

#include "Collation.h"
#include "FileHasher.h"
#include "Manifest.h"
#include "Output.h"
#include "Platform.h"
#include "Progress.h"
#include "Report.h"
#include "Walk.h"

#include <vansys/TFormatStringCore.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace treehash
{

namespace
{

constexpr char const *StandardOutputName = "standard output";
constexpr std::size_t MaxReportedLines = 20; // A file that is no manifest at all may have millions of them.

/// A manifest cannot hold its own digest.
void LeaveOutOutput(std::vector<FoundFile> &files, std::string const &output)
{
    std::error_code error;
    std::uint64_t const size = StatusOf(output, error).size;
    std::string const target = CanonicalName(output, error);
    if (error)
        return; // It does not exist yet.
    // Only the few files of the same size are worth asking the disk about. They are told apart by their
    // names, because another link to the same file keeps what it holds when the manifest takes its place.
    auto const isTarget = [&](FoundFile const &file)
    { return file.size == size && CanonicalName(file.name, error) == target; };
    std::erase_if(files, isTarget);
}

std::uint64_t TotalSize(std::vector<FoundFile> const &files)
{
    std::uint64_t total = 0;
    for (FoundFile const &file : files)
        total += file.size;
    return total;
}

std::uint64_t TotalSize(std::vector<Entry> const &entries)
{
    std::uint64_t total = 0;
    for (Entry const &entry : entries)
    {
        std::error_code error;
        total += StatusOf(entry.name, error).size;
    }
    return total;
}

void ReportMalformedLines(Manifest const &manifest, std::string const &name, Report &report)
{
    std::size_t const count = manifest.malformedLines.size();
    for (std::size_t index = 0; index < std::min(count, MaxReportedLines); ++index)
    {
        std::string place = name + ":";
        place += TStringCore::number(manifest.malformedLines[index]).toStdString();
        report.Failure(place, VantrelException("Malformed line"));
    }
    if (count > MaxReportedLines)
        report.Failure(name, VantrelException("More malformed lines follow"));
}

/// What standard output tells about a file that fails, in the words and with the escapes of coreutils.
std::string FailureLine(std::string const &name, std::string_view failure)
{
    std::string const escaped = EscapedName(name);
    return (escaped == name ? "" : "\\") + escaped + ": " + std::string(failure) + "\n";
}

/// Writes the line of every file that can be hashed.
void WriteEntries(std::vector<FoundFile> const &files, sha2::SHA_TYPE type, Output &output,
                  Progress &progress, Report &report)
{
    FileHasher hasher(progress);
    for (FoundFile const &file : files)
    {
        std::string line;
        try
        {
            line = FormatEntry(hasher.Hash(file.name, type), file.name);
        }
        catch (VantrelException const &exception)
        {
            report.Failure(file.name, exception);
            continue;
        }
        if (output.IsTerminal())
            progress.Hide();
        output.Write(line);
    }
}

struct Verification
{
    std::size_t matching = 0;
    std::size_t different = 0;
    std::size_t unreadable = 0;

    bool IsPassed() const { return different == 0 && unreadable == 0; }
};

Verification VerifyEntries(std::vector<Entry> const &entries, Output &output, Progress &progress,
                           Report &report)
{
    FileHasher hasher(progress);
    Verification result;
    for (Entry const &entry : entries)
    {
        std::string_view failure;
        try
        {
            if (hasher.Hash(entry.name, entry.algorithm->type) == entry.digest)
            {
                ++result.matching;
                continue;
            }
            ++result.different;
            failure = "FAILED";
        }
        catch (VantrelException const &exception)
        {
            report.Failure(entry.name, exception);
            ++result.unreadable;
            failure = "FAILED open or read";
        }
        if (output.IsTerminal())
            progress.Hide();
        output.Write(FailureLine(entry.name, failure));
    }
    return result;
}

Outcome OutcomeOf(bool success)
{
    return success ? Outcome::Success : Outcome::Failure;
}

} // namespace

Outcome CreateManifest(Options const &options)
{
    Progress progress;
    Report report(progress);
    std::vector<FoundFile> files = FindFiles(options.paths, report);
    if (options.output)
        LeaveOutOutput(files, *options.output);
    if (options.collation)
        SortByCollation(files, *options.collation);
    progress.Start(files.size(), TotalSize(files));

    Algorithm const &algorithm = options.algorithm != nullptr ? *options.algorithm : DefaultAlgorithm;
    try
    {
        // Opened only now, so that the walk does not find what is being written.
        Output output(options.output);
        WriteEntries(files, algorithm.type, output, progress, report);
        output.Commit();
    }
    catch (VantrelException const &exception)
    {
        report.Failure(options.output.value_or(StandardOutputName), exception);
    }
    return OutcomeOf(!report.HasFailures());
}

Outcome VerifyManifest(Options const &options)
{
    Progress progress;
    Report report(progress);
    Manifest manifest;
    try
    {
        manifest = ReadManifest(options.manifest, options.algorithm);
        // To verify nothing is no success: the file is probably not what the user takes it for.
        if (manifest.entries.empty())
            throw VantrelException("Lists no files");
    }
    catch (VantrelException const &exception)
    {
        report.Failure(options.manifest, exception);
    }
    ReportMalformedLines(manifest, options.manifest, report);
    if (manifest.entries.empty())
        return Outcome::Failure;
    progress.Start(manifest.entries.size(), progress.IsShown() ? TotalSize(manifest.entries) : 0);

    try
    {
        Output output(std::nullopt);
        Verification const result = VerifyEntries(manifest.entries, output, progress, report);
        progress.Hide();
        TFormatStringCore summary(
            "files: %1, matching: %2, different: %3, unreadable: %4, malformed lines: %5\n");
        summary.arg(manifest.entries.size())
            .arg(result.matching)
            .arg(result.different)
            .arg(result.unreadable)
            .arg(manifest.malformedLines.size());
        output.Write(summary.result().toStdString());
        output.Commit();
        return OutcomeOf(result.IsPassed() && !report.HasFailures());
    }
    catch (VantrelException const &exception)
    {
        report.Failure(StandardOutputName, exception);
        return Outcome::Failure;
    }
}

} // namespace treehash
