/// @file
/// What the program needs from the operating system beyond the standard library. Everything that differs
/// from one system to the next is here.
///
/// Files go by their *name* throughout the program: the bytes that a manifest holds, with slashes between the
/// parts. On Windows these are UTF-8, in which a lone surrogate has its three-byte form; elsewhere they need
/// not be valid in any encoding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace treehash
{

/// Makes the standard streams take bytes as they are until the program ends, and terminals show them as UTF-8
/// where that is for the program to choose.
void PrepareStandardStreams();

/// Writes to standard error at once, and in one piece. Failures have no consequence.
void WriteMessage(std::string_view text);

/// The arguments after the program's name, given those of `main`.
std::vector<std::string> CommandLineArguments(int count, char **arguments);

/// The name of a path that the user has typed: without doubled slashes.
std::string NameFromArgument(std::string const &argument);

/// Throws a `VantrelException` whose one message is the system's text for the error.
[[noreturn]] void ThrowSystemError(std::error_code error);

/// The same for the value that `errno` has now.
[[noreturn]] void ThrowSystemError();

enum class FileKind
{
    None, ///< There is no such file, or it is out of reach.
    Regular,
    Folder,
    Link,
    Other
};

struct FileStatus
{
    FileKind kind = FileKind::None;
    std::uint64_t size = 0; ///< Of regular files.
};

/// The status of what the name stands for, with links followed. The error tells why there is none.
FileStatus StatusOf(std::string const &name, std::error_code &error);

/// What is found in a folder. Links are not followed.
struct FolderEntry
{
    std::string name; ///< Within the folder.
    FileStatus status;
    std::error_code error; ///< Why there is no status.
};

/// Calls the visitor for everything that is in the folder. The error tells why that is not all.
void VisitFolder(std::string const &folder, std::function<void(FolderEntry const &)> const &visitor,
                 std::error_code &error);

bool IsLink(std::string const &name);

/// The one name of what the name stands for, without links. Empty on an error.
std::string CanonicalName(std::string const &name, std::error_code &error);

/// Gives the second file the permissions of the first.
void CopyPermissions(std::string const &from, std::string const &to, std::error_code &error);

/// Takes the place of what has the new name, in one step.
void RenameFile(std::string const &from, std::string const &to, std::error_code &error);

/// Failures have no consequence.
void RemoveFile(std::string const &name);

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
    using Handle = std::intptr_t; ///< What the system has for open files.

    explicit InputFile(Handle handle) : m_handle(handle) {}

    /// Differs as soon as the contents do.
    struct Version
    {
        std::uint64_t size = 0;
        std::int64_t changeSeconds = 0;  ///< The time of the last change,
        std::int64_t changeFraction = 0; ///< and the rest in the smallest unit of the system.

        bool operator==(Version const &) const = default;
    };

    Version CurrentVersion() const;

    Handle m_handle;
    Version m_version; ///< When it was opened.
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
