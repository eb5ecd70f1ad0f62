#include "Platform.h"

#include <vansys/VantrelException.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treehash
{

namespace
{

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

struct stat StatusOf(int descriptor)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        ThrowSystemError();
    return status;
}

} // namespace

std::filesystem::path PathFromName(std::string const &name)
{
    return name;
}

std::string NameFromPath(std::filesystem::path const &path)
{
    return path.native();
}

void ThrowSystemError(std::error_code error)
{
    throw VantrelException(TStringCore::fromStdString(error.message()));
}

void ThrowSystemError()
{
    ThrowSystemError({errno, std::generic_category()});
}

InputFile::InputFile(std::string const &name, Accept accept) : InputFile(OpenForReading(name, accept))
{
    struct stat const status = StatusOf(m_descriptor);
    if (accept == Accept::RegularFiles && !S_ISREG(status.st_mode))
        throw VantrelException(S_ISDIR(status.st_mode) ? "Is a directory" : "Not a regular file");
    m_size = status.st_size;
    m_changeSeconds = status.st_mtim.tv_sec;
    m_changeNanoseconds = status.st_mtim.tv_nsec;
}

InputFile::~InputFile()
{
    close(m_descriptor);
}

std::size_t InputFile::Read(unsigned char *buffer, std::size_t size)
{
    ssize_t count;
    do
        count = read(m_descriptor, buffer, size);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        ThrowSystemError();
    return static_cast<std::size_t>(count);
}

void InputFile::RequireUnchanged() const
{
    struct stat const status = StatusOf(m_descriptor);
    if (m_size != status.st_size || m_changeSeconds != status.st_mtim.tv_sec ||
        m_changeNanoseconds != status.st_mtim.tv_nsec)
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
