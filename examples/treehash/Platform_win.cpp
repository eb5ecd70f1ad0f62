#include "Platform.h"

#include <vansys/TPathCore.h>
#include <vansys/VantrelException.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <iterator>
#include <memory>

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX 1 // The standard library of MinGW has the same definition.
#include <windows.h>

#include <shellapi.h>

namespace treehash
{

namespace
{

/// Reading disturbs nobody who writes to the file, renames it or removes it.
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Without it, folders cannot be opened.
constexpr DWORD AllowFolders = FILE_FLAG_BACKUP_SEMANTICS;

struct HandleCloser
{
    using pointer = HANDLE;

    void operator()(HANDLE handle) const
    {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};

using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;

std::error_code LastError()
{
    return {static_cast<int>(GetLastError()), std::system_category()};
}

[[noreturn]] void ThrowLastError()
{
    ThrowSystemError(LastError());
}

// Names and paths

std::string NameFromPath(std::wstring_view path)
{
    return TPathCore(TStringCore(path)).GenericString().toStdString();
}

/// With backslashes. Empty, which is the path of no file, when the name is not UTF-8: what the decoder makes
/// of it could be the name of another file.
std::wstring PathFromName(std::string const &name)
{
    if (TStringCore::fromStdString(name).toStdString() != name)
        return {};
    return TPathCore::fromNativeBytes(name).ForHost().toStdWString();
}

std::wstring FullPath(std::wstring const &path)
{
    std::wstring full;
    DWORD length = MAX_PATH;
    do
    {
        full.resize(length);
        length = GetFullPathNameW(path.c_str(), length, full.data(), nullptr);
    } while (length > full.size());
    full.resize(length);
    return full;
}

/// Two backslashes, and a dot or a question mark between two more: the system takes the rest as it is.
bool IsDevicePath(std::wstring_view path)
{
    return path.starts_with(L"\\\\.\\") || path.starts_with(L"\\\\?\\");
}

/// The length of what ".." does not lead out of: the extended prefix with a drive, or with a server and a
/// share.
std::size_t RootLength(std::wstring_view path)
{
    constexpr std::wstring_view Prefix = L"\\\\?\\";
    constexpr std::wstring_view ServerPrefix = L"\\\\?\\UNC\\";
    bool const hasServer = path.starts_with(ServerPrefix);
    std::size_t end = path.find(L'\\', hasServer ? ServerPrefix.size() : Prefix.size());
    if (hasServer && end != std::wstring_view::npos)
        end = path.find(L'\\', end + 1);
    return std::min(end, path.size());
}

/// Resolves "." and "..", which the system does not do after the extended prefix. A slash at the end stays:
/// it asks for a folder.
std::wstring ResolvedPath(std::wstring_view path)
{
    std::size_t const rootLength = RootLength(path);
    std::wstring resolved(path.substr(0, rootLength));
    for (std::size_t begin = rootLength; begin < path.size();)
    {
        std::size_t const end = std::min(path.find(L'\\', begin + 1), path.size());
        std::wstring_view const part = path.substr(begin, end - begin); // with the backslash before it
        if (part == L"\\..")
            resolved.resize(std::max(rootLength, resolved.rfind(L'\\')));
        else if (part != L"\\" && part != L"\\.")
            resolved += part;
        begin = end;
    }
    if (path.ends_with(L'\\') || resolved.size() == rootLength)
        resolved += L'\\';
    return resolved;
}

/// The form of the path that may be longer than 260 characters, and in which every name that a folder holds
/// means itself: "nul", and names that end in a dot or a space. `std::filesystem` of MinGW knows neither this
/// form nor servers.
std::wstring ExtendedPath(std::string const &name)
{
    std::wstring path = PathFromName(name);
    if (path.empty() || IsDevicePath(path))
        return path;

    std::size_t const driveLength = path.size() >= 2 && path[1] == L':' ? 2 : 0;
    bool const isRooted = path.substr(driveLength).starts_with(L'\\');
    bool const isAbsolute = path.starts_with(L"\\\\") || (driveLength > 0 && isRooted);
    if (!isAbsolute)
    {
        // Only the current folder, that of a drive included, is for the system to tell: it would alter names.
        std::wstring const start = isRooted ? L"\\" : path.substr(0, driveLength) + L".";
        path = FullPath(start) + L'\\' + path.substr(driveLength);
    }
    if (path.starts_with(L"\\\\") && !IsDevicePath(path))
        path.replace(0, 1, L"\\\\?\\UNC");
    else if (!IsDevicePath(path)) // which the current folder may be
        path.insert(0, L"\\\\?\\");
    return ResolvedPath(path);
}

// Status

UniqueHandle OpenForStatus(std::string const &name, std::error_code &error)
{
    UniqueHandle handle(CreateFileW(ExtendedPath(name).c_str(), FILE_READ_ATTRIBUTES, ShareAll, nullptr,
                                    OPEN_EXISTING, AllowFolders, nullptr));
    error = handle.get() != INVALID_HANDLE_VALUE ? std::error_code() : LastError();
    return handle;
}

std::uint64_t Joined(DWORD high, DWORD low)
{
    return std::uint64_t{high} << 32 | low;
}

FileStatus StatusFromFound(WIN32_FIND_DATAW const &found)
{
    // Reparse points of other kinds are files and folders whose contents lie somewhere else. Wine gives no
    // kind to the links that it finds.
    DWORD const kind = found.dwReserved0;
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
        (kind == IO_REPARSE_TAG_RESERVED_ZERO || IsReparseTagNameSurrogate(kind)))
        return {FileKind::Link};
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return {FileKind::Folder};
    return {FileKind::Regular, Joined(found.nFileSizeHigh, found.nFileSizeLow)};
}

BY_HANDLE_FILE_INFORMATION RequireInformation(HANDLE handle)
{
    BY_HANDLE_FILE_INFORMATION information;
    if (!GetFileInformationByHandle(handle, &information))
        ThrowLastError();
    return information;
}

std::intptr_t OpenForReading(std::string const &name)
{
    HANDLE const handle = CreateFileW(ExtendedPath(name).c_str(), GENERIC_READ, ShareAll, nullptr,
                                      OPEN_EXISTING, AllowFolders | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        ThrowLastError();
    return reinterpret_cast<std::intptr_t>(handle);
}

// The terminal

HANDLE HandleOf(std::FILE *stream)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

bool IsConsole(std::FILE *stream)
{
    DWORD mode;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

UINT g_previousCodePage = 0; ///< Of the terminal; 0 when there is none.

/// The terminal outlives the program, and keeps what it does to it.
void RestoreCodePage()
{
    if (g_previousCodePage != 0)
        SetConsoleOutputCP(g_previousCodePage);
}

// Interrupts

enum class Interrupt
{
    Unguarded,
    Guarded,
    Requested
};

std::atomic<Interrupt> g_interrupt = Interrupt::Unguarded; // Handlers run in threads of their own.

BOOL WINAPI HandleRequest(DWORD request)
{
    auto state = Interrupt::Guarded;
    if (!g_interrupt.compare_exchange_strong(state, Interrupt::Requested) && state == Interrupt::Unguarded)
    {
        RestoreCodePage();
        return FALSE; // The next handler is the system's, which ends the program.
    }
    // The program has some seconds after these, but none after the handler.
    if (request == CTRL_CLOSE_EVENT || request == CTRL_LOGOFF_EVENT || request == CTRL_SHUTDOWN_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

void PrepareStandardStreams()
{
    _setmode(_fileno(stdout), _O_BINARY);
    if (IsConsole(stdout) || IsConsole(stderr))
    {
        g_previousCodePage = GetConsoleOutputCP();
        SetConsoleOutputCP(CP_UTF8);
        std::atexit(RestoreCodePage);
    }
    if (IsConsole(stdout))
    {
        // Without a buffer, a console gets byte after byte, and shows none of the characters that take
        // several.
        constexpr std::size_t LongestLine = 128 * 1024;
        std::setvbuf(stdout, nullptr, _IOFBF, LongestLine);
    }
    SetConsoleCtrlHandler(HandleRequest, TRUE);
}

void WriteMessage(std::string_view text)
{
    DWORD written;
    WriteFile(HandleOf(stderr), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

/// Those of `main` are in the code page of the system, which lacks most characters.
std::vector<std::string> CommandLineArguments(int, char **)
{
    struct Freer
    {
        void operator()(wchar_t **arguments) const { LocalFree(arguments); }
    };
    int count = 0;
    std::unique_ptr<wchar_t *[], Freer> const arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!arguments)
        ThrowLastError();
    std::vector<std::string> result;
    for (int index = 1; index < count; ++index)
        result.push_back(TStringCore(arguments[static_cast<std::size_t>(index)]).toStdString());
    return result;
}

std::string NameFromArgument(std::string const &argument)
{
    // Only here, where the user has typed them, are NUL and the like names of devices.
    std::wstring const full = FullPath(PathFromName(argument));
    if (IsDevicePath(full) && full[2] == L'.')
        return NameFromPath(full);

    std::string name = argument;
    std::replace(name.begin(), name.end(), '\\', '/');
    auto const doubled = [](char first, char second) { return first == '/' && second == '/'; };
    bool const hasServer = name.starts_with("//");
    name.erase(std::unique(name.begin() + (hasServer ? 1 : 0), name.end(), doubled), name.end());

    // A drive alone is its current folder: names within it take more than a slash between.
    if (name.size() >= 2 && name[1] == ':' && (name.size() == 2 || name[2] != '/'))
        name.insert(2, "./");
    return name;
}

void ThrowSystemError(std::error_code error)
{
    if (error.category() != std::system_category())
        throw VantrelException(TStringCore::fromStdString(error.message()));
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                      FORMAT_MESSAGE_MAX_WIDTH_MASK, // no line ends
                                  nullptr, static_cast<DWORD>(error.value()), 0, text,
                                  static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && text[length - 1] <= L' ')
        --length;
    if (length == 0)
        throw VantrelException(TStringCore::fromStdString("System error " + std::to_string(error.value())));
    throw VantrelException(TStringCore(text, static_cast<int>(length)));
}

void ThrowSystemError()
{
    ThrowSystemError({errno, std::generic_category()});
}

FileStatus StatusOf(std::string const &name, std::error_code &error)
{
    UniqueHandle const handle = OpenForStatus(name, error);
    if (error)
        return {};
    BY_HANDLE_FILE_INFORMATION information;
    if (GetFileType(handle.get()) != FILE_TYPE_DISK ||
        !GetFileInformationByHandle(handle.get(), &information))
        return {FileKind::Other};
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return {FileKind::Folder};
    return {FileKind::Regular, Joined(information.nFileSizeHigh, information.nFileSizeLow)};
}

void VisitFolder(std::string const &folder, std::function<void(FolderEntry const &)> const &visitor,
                 std::error_code &error)
{
    struct FindCloser
    {
        using pointer = HANDLE;

        void operator()(HANDLE handle) const { FindClose(handle); }
    };
    std::wstring const path = ExtendedPath(folder);
    std::wstring const pattern = path.ends_with(L'\\') ? path + L"*" : path + L"\\*";
    WIN32_FIND_DATAW found;
    HANDLE const first = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                                          nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (first == INVALID_HANDLE_VALUE)
    {
        error = LastError();
        if (error.value() == ERROR_FILE_NOT_FOUND) // An empty drive lacks even ".".
            error.clear();
        return;
    }
    std::unique_ptr<HANDLE, FindCloser> const search(first);
    do
    {
        std::wstring_view const name = found.cFileName;
        if (name != L"." && name != L"..")
            visitor({NameFromPath(name), StatusFromFound(found), {}});
    } while (FindNextFileW(search.get(), &found));
    error = LastError();
    if (error.value() == ERROR_NO_MORE_FILES)
        error.clear();
}

bool IsLink(std::string const &name)
{
    WIN32_FIND_DATAW found;
    HANDLE const search = FindFirstFileW(ExtendedPath(name).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    FindClose(search);
    return StatusFromFound(found).kind == FileKind::Link;
}

std::string CanonicalName(std::string const &name, std::error_code &error)
{
    UniqueHandle const handle = OpenForStatus(name, error);
    if (error)
        return {};
    std::wstring path;
    DWORD length = MAX_PATH;
    do
    {
        path.resize(length);
        length = GetFinalPathNameByHandleW(handle.get(), path.data(), length, FILE_NAME_NORMALIZED);
    } while (length > path.size());
    if (length == 0)
        error = LastError();
    path.resize(length);
    return NameFromPath(path);
}

void CopyPermissions(std::string const &from, std::string const &to, std::error_code &error)
{
    error.clear();
    std::wstring const source = ExtendedPath(from);
    DWORD size = 0;
    GetFileSecurityW(source.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (GetLastError() == ERROR_INVALID_FUNCTION || GetLastError() == ERROR_NOT_SUPPORTED)
        return; // Not every file system has permissions.
    auto const permissions = std::make_unique<unsigned char[]>(size);
    if (!GetFileSecurityW(source.c_str(), DACL_SECURITY_INFORMATION, permissions.get(), size, &size) ||
        !SetFileSecurityW(ExtendedPath(to).c_str(), DACL_SECURITY_INFORMATION, permissions.get()))
        error = LastError();
}

void RenameFile(std::string const &from, std::string const &to, std::error_code &error)
{
    bool const renamed = MoveFileExW(ExtendedPath(from).c_str(), ExtendedPath(to).c_str(),
                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    error = renamed ? std::error_code() : LastError();
}

void RemoveFile(std::string const &name)
{
    DeleteFileW(ExtendedPath(name).c_str());
}

InputFile::InputFile(std::string const &name, Accept accept) : InputFile(OpenForReading(name))
{
    auto const handle = reinterpret_cast<HANDLE>(m_handle);
    if (GetFileType(handle) == FILE_TYPE_DISK)
    {
        if ((RequireInformation(handle).dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            throw VantrelException("Is a directory");
        m_version = CurrentVersion();
    }
    else if (accept == Accept::RegularFiles)
        throw VantrelException("Not a regular file");
}

InputFile::~InputFile()
{
    CloseHandle(reinterpret_cast<HANDLE>(m_handle));
}

std::size_t InputFile::Read(unsigned char *buffer, std::size_t size)
{
    DWORD count = 0;
    if (!ReadFile(reinterpret_cast<HANDLE>(m_handle), buffer, static_cast<DWORD>(size), &count, nullptr) &&
        GetLastError() != ERROR_BROKEN_PIPE) // the end of a pipe
        ThrowLastError();
    return count;
}

InputFile::Version InputFile::CurrentVersion() const
{
    constexpr std::int64_t TicksPerSecond = 10'000'000;
    BY_HANDLE_FILE_INFORMATION const information = RequireInformation(reinterpret_cast<HANDLE>(m_handle));
    FILETIME const time = information.ftLastWriteTime;
    auto const ticks = static_cast<std::int64_t>(Joined(time.dwHighDateTime, time.dwLowDateTime));
    return {Joined(information.nFileSizeHigh, information.nFileSizeLow), ticks / TicksPerSecond,
            ticks % TicksPerSecond};
}

void InputFile::RequireUnchanged() const
{
    if (CurrentVersion() != m_version)
        throw VantrelException("Changed while it was read");
}

std::FILE *OpenForWriting(std::string const &name, Create create)
{
    UniqueHandle handle(CreateFileW(ExtendedPath(name).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    create == Create::NewFile ? CREATE_NEW : CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (handle.get() == INVALID_HANDLE_VALUE)
        ThrowLastError();
    int const descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle.get()), _O_BINARY);
    if (descriptor < 0)
        ThrowSystemError();
    static_cast<void>(handle.release()); // It is the descriptor's now.
    std::FILE *const file = _fdopen(descriptor, "wb");
    if (file == nullptr)
    {
        std::error_code const error(errno, std::generic_category());
        _close(descriptor);
        ThrowSystemError(error);
    }
    return file;
}

void FlushToDisk(std::FILE *file)
{
    if (std::fflush(file) != 0)
        ThrowSystemError();
    if (!FlushFileBuffers(HandleOf(file)))
        ThrowLastError();
}

int TerminalColumns(std::FILE *stream)
{
    CONSOLE_SCREEN_BUFFER_INFO information;
    if (!GetConsoleScreenBufferInfo(HandleOf(stream), &information))
        return 0;
    return information.srWindow.Right - information.srWindow.Left + 1;
}

InterruptGuard::InterruptGuard()
{
    g_interrupt = Interrupt::Guarded;
}

InterruptGuard::~InterruptGuard()
{
    if (g_interrupt.exchange(Interrupt::Unguarded) != Interrupt::Requested)
        return;
    RestoreCodePage();
    ExitProcess(STATUS_CONTROL_C_EXIT); // as the system's own handler does
}

void ThrowIfInterrupted()
{
    if (g_interrupt == Interrupt::Requested)
        throw Interrupted();
}

} // namespace treehash
