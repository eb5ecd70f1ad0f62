#include "Platform.h"

#include <vansys/VantrelException.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treehash
{

namespace
{

namespace fs = std::filesystem;

constexpr int EndingSignals[] = {SIGHUP, SIGINT, SIGTERM};

struct sigaction g_previousActions[std::size(EndingSignals)];
volatile std::sig_atomic_t g_caughtSignal = 0;

extern "C" void RememberSignal(int number)
{
    g_caughtSignal = number;
}

int OpenForReading(std::string const &name, InputFile::Accept accept)
{
    // A pipe that took the place of a regular file must not keep the program waiting for a writer.
    int const waiting = accept == InputFile::Accept::RegularFiles ? O_NONBLOCK : 0;
    int const descriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC | waiting);
    if (descriptor < 0)
        ThrowSystemError();
    return descriptor;
}

struct stat RequireStatus(int descriptor)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        ThrowSystemError();
    return status;
}

FolderEntry EntryOf(fs::directory_entry const &found)
{
    FolderEntry entry{found.path().filename().native(), {}, {}};
    if (found.is_symlink(entry.error))
        entry.status.kind = FileKind::Link;
    else if (found.is_directory(entry.error))
        entry.status.kind = FileKind::Folder;
    else if (found.is_regular_file(entry.error))
    {
        std::error_code error;
        std::uintmax_t const size = found.file_size(error);
        // An unknown size is 0: the file is about to be reported when it is opened.
        entry.status = {FileKind::Regular, error ? 0 : size};
    }
    else if (!entry.error)
        entry.status.kind = FileKind::Other;
    return entry;
}

int DescriptorOf(std::intptr_t handle)
{
    return static_cast<int>(handle);
}

} // namespace

void PrepareStandardStreams() {} // They are so already.

void WriteMessage(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr); // which has no buffer
}

std::vector<std::string> CommandLineArguments(int count, char **arguments)
{
    return {arguments + std::min(count, 1), arguments + count};
}

std::string NameFromArgument(std::string const &argument)
{
    std::string name = argument;
    auto const doubled = [](char first, char second) { return first == '/' && second == '/'; };
    name.erase(std::unique(name.begin(), name.end(), doubled), name.end());
    return name;
}

void ThrowSystemError(std::error_code error)
{
    throw VantrelException(TStringCore::fromStdString(error.message()));
}

void ThrowSystemError()
{
    ThrowSystemError({errno, std::generic_category()});
}

FileStatus StatusOf(std::string const &name, std::error_code &error)
{
    struct stat status;
    if (stat(name.c_str(), &status) != 0)
    {
        error.assign(errno, std::generic_category());
        return {};
    }
    error.clear();
    if (S_ISDIR(status.st_mode))
        return {FileKind::Folder};
    if (S_ISREG(status.st_mode))
        return {FileKind::Regular, static_cast<std::uint64_t>(status.st_size)};
    return {FileKind::Other};
}

void VisitFolder(std::string const &folder, std::function<void(FolderEntry const &)> const &visitor,
                 std::error_code &error)
{
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator())
    {
        visitor(EntryOf(*entry));
        entry.increment(error);
    }
}

bool IsLink(std::string const &name)
{
    std::error_code error;
    return fs::is_symlink(name, error);
}

std::string CanonicalName(std::string const &name, std::error_code &error)
{
    return fs::canonical(name, error).native();
}

void CopyPermissions(std::string const &from, std::string const &to, std::error_code &error)
{
    fs::file_status const status = fs::status(from, error);
    if (!error)
        fs::permissions(to, status.permissions(), error);
}

void RenameFile(std::string const &from, std::string const &to, std::error_code &error)
{
    fs::rename(from, to, error);
}

void RemoveFile(std::string const &name)
{
    unlink(name.c_str());
}

InputFile::InputFile(std::string const &name, Accept accept) : InputFile(OpenForReading(name, accept))
{
    struct stat const status = RequireStatus(DescriptorOf(m_handle));
    if (accept == Accept::RegularFiles && !S_ISREG(status.st_mode))
        throw VantrelException(S_ISDIR(status.st_mode) ? "Is a directory" : "Not a regular file");
    m_version = CurrentVersion();
}

InputFile::~InputFile()
{
    close(DescriptorOf(m_handle));
}

std::size_t InputFile::Read(unsigned char *buffer, std::size_t size)
{
    ssize_t count;
    do
        count = read(DescriptorOf(m_handle), buffer, size);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        ThrowSystemError();
    return static_cast<std::size_t>(count);
}

InputFile::Version InputFile::CurrentVersion() const
{
    struct stat const status = RequireStatus(DescriptorOf(m_handle));
    return {static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void InputFile::RequireUnchanged() const
{
    if (CurrentVersion() != m_version)
        throw VantrelException("Changed while it was read");
}

std::FILE *OpenForWriting(std::string const &name, Create create)
{
    std::FILE *const file = std::fopen(name.c_str(), create == Create::NewFile ? "wbxe" : "wbe");
    if (file == nullptr)
        ThrowSystemError();
    return file;
}

void FlushToDisk(std::FILE *file)
{
    if (std::fflush(file) != 0 || fsync(fileno(file)) != 0)
        ThrowSystemError();
}

int TerminalColumns(std::FILE *stream)
{
    constexpr int UsualColumns = 80; // of a terminal that does not tell
    if (isatty(fileno(stream)) == 0)
        return 0;
    winsize window{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &window) != 0 || window.ws_col == 0)
        return UsualColumns;
    return window.ws_col;
}

InterruptGuard::InterruptGuard()
{
    struct sigaction action
    {
    };
    action.sa_handler = RememberSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < std::size(EndingSignals); ++index)
    {
        sigaction(EndingSignals[index], nullptr, &g_previousActions[index]);
        // What the parent has chosen to ignore (nohup does) stays ignored.
        if (g_previousActions[index].sa_handler != SIG_IGN)
            sigaction(EndingSignals[index], &action, nullptr);
    }
}

InterruptGuard::~InterruptGuard()
{
    for (std::size_t index = 0; index < std::size(EndingSignals); ++index)
        sigaction(EndingSignals[index], &g_previousActions[index], nullptr);
    if (g_caughtSignal != 0)
        raise(g_caughtSignal);
}

void ThrowIfInterrupted()
{
    if (g_caughtSignal != 0)
        throw Interrupted();
}

} // namespace treehash
