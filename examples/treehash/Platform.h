/// @file
/// What the program needs from the operating system beyond the standard library. Everything that differs
/// from one system to the next is here.
///
/// Files go by their *name* throughout the program: the bytes that a manifest holds, which need not be valid
/// UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace treehash
{

std::filesystem::path PathFromName(std::string const &name);
std::string NameFromPath(std::filesystem::path const &path);

/// Throws a `VantrelException` whose one message is the system's text for the error.
[[noreturn]] void ThrowSystemError(std::error_code error);

/// The same for the value that `errno` has now.
[[noreturn]] void ThrowSystemError();

/// A file opened for reading from its beginning to its end, without a buffer of its own.
/// Failures are `VantrelException`s that give the reason but not the name, which the caller knows.
class InputFile
{
public:
    enum class Accept
    {
        AnyFile,
        RegularFiles ///< Others are refused, without waiting for the other end of a pipe.
    };

    InputFile(std::string const &name, Accept accept);
    ~InputFile();
    InputFile(InputFile const &) = delete;
    InputFile &operator=(InputFile const &) = delete;

    /// Fills the buffer as far as the file gives bytes at once. Returns their number; 0 at the end.
    std::size_t Read(unsigned char *buffer, std::size_t size);

    /// Throws when somebody has written to the file since it was opened.
    void RequireUnchanged() const;

private:
    explicit InputFile(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
    std::int64_t m_size = 0; ///< This and the time of the last change are those of the opening.
    std::int64_t m_changeSeconds = 0;
    std::int64_t m_changeNanoseconds = 0;
};

enum class Create
{
    NewFile, ///< Fails when there is such a file.
    OrReplace
};

/// Never null; throws the reason.
std::FILE *OpenForWriting(std::string const &name, Create create);

/// Returns when the bytes written so far are on the disk; throws when they cannot get there.
void FlushToDisk(std::FILE *file);

/// The width of the terminal that the stream writes to; 0 when it is no terminal.
int TerminalColumns(std::FILE *stream);

/// While it lives, a request to end the program (Ctrl-C, for example) only becomes a flag, so that there is
/// time to clean up. At the end of its life the request, if there was one, takes its usual course.
class InterruptGuard
{
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(InterruptGuard const &) = delete;
    InterruptGuard &operator=(InterruptGuard const &) = delete;
};

/// Thrown where the program stops because of such a request. Nothing is to be reported then.
class Interrupted
{
};

/// Throws `Interrupted` when a guard has caught a request.
void ThrowIfInterrupted();

} // namespace treehash
