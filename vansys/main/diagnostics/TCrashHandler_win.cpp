#include "vansys/TCrashHandler.h"

#include "main/diagnostics/CrashReport_win.h"
#include "main/platform/Handle.h"
#include "main/platform/Windows.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cxxabi.h>
#include <mutex>
#include <string>
#include <string_view>
#include <typeinfo>

namespace vansys::detail
{

namespace
{

// In milliseconds.
constexpr DWORD LimitOfReport = 10000;
constexpr DWORD LimitOfOthers = 12000;

constexpr DWORD CodeOfAbort = 0x40000015; // what the system has for a program that ends itself

using SignalHandler = void (*)(int);

/// What is there from `Install` to `Uninstall`.
struct Installation
{
    CrashSettings settings;
    Handle begin; ///< set when there is a crash to report, or nothing more to be done
    Handle end;   ///< set when it is reported
    Handle thread;
    LPTOP_LEVEL_EXCEPTION_FILTER previousFilter = nullptr;
    SignalHandler previousAbort = SIG_DFL;
};

std::mutex g_mutex; ///< for Install and Uninstall
bool g_isInstalled = false;
Installation g_installation;

std::atomic<DWORD> g_reporter{0}; ///< the thread that has crashed
std::atomic<bool> g_isReported{false};
Crash g_crash;
CrashProgress g_progress;

DWORD WINAPI RunReporter(void *)
{
    WaitForSingleObject(g_installation.begin.Get(), INFINITE);
    if (g_reporter != 0)
    {
        WriteCrashReport(g_crash, g_progress);
        SetEvent(g_installation.end.Get());
    }
    return 0;
}

/// Once in the life of the process. Other threads wait until it is done.
void Report(EXCEPTION_POINTERS *pointers, std::type_info const *exception) noexcept
{
    DWORD const thread = GetCurrentThreadId();
    DWORD nobody = 0;
    if (!g_reporter.compare_exchange_strong(nobody, thread))
    {
        for (DWORD waited = 0; nobody != thread && !g_isReported && waited < LimitOfOthers; waited += 10)
            Sleep(10);
        return;
    }
    g_crash = {&g_installation.settings, thread, pointers, exception};
    SetEvent(g_installation.begin.Get());
    if (WaitForSingleObject(g_installation.end.Get(), LimitOfReport) != WAIT_OBJECT_0)
        CompleteCrashReport(g_crash, g_progress);
    g_isReported = true;
}

LONG WINAPI OnUnhandled(EXCEPTION_POINTERS *pointers)
{
    LPTOP_LEVEL_EXCEPTION_FILTER const previous = g_installation.previousFilter;
    Report(pointers, nullptr);
    return previous != nullptr ? previous(pointers) : EXCEPTION_CONTINUE_SEARCH;
}

void OnAbort(int signal)
{
    SignalHandler const previous = g_installation.previousAbort;
    CONTEXT context{};
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = CodeOfAbort;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void *>(context.Eip);
    EXCEPTION_POINTERS pointers{&record, &context};
    Report(&pointers, abi::__cxa_current_exception_type());
    // When this returns, abort ends the program.
    if (previous != SIG_DFL && previous != SIG_IGN && previous != SIG_ERR)
        previous(signal);
}

/// Appends to the wide text what is UTF-8. False when that is not possible.
bool AppendUtf8(std::wstring &wide, std::string const &text)
{
    if (text.find('\0') != std::string::npos)
        return false;
    if (text.empty())
        return true;
    int const size = static_cast<int>(text.size());
    int const count = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
    std::size_t const begin = wide.size();
    wide.resize(begin + static_cast<std::size_t>(count));
    return count > 0 && MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size,
                                            wide.data() + begin, count) == count;
}

/// Makes "C:\folder\base-" of the options. Throws `std::bad_alloc`.
bool SetPrefix(TCrashHandler::Options const &options, CrashSettings &settings)
{
    std::wstring prefix;
    if (!AppendUtf8(prefix, options.folder.empty() ? "." : options.folder))
        return false;
    wchar_t folder[CrashSettings::LongestPrefix + 1];
    DWORD const length = GetFullPathNameW(prefix.c_str(), CrashSettings::LongestPrefix, folder, nullptr);
    if (length == 0 || length >= CrashSettings::LongestPrefix)
        return false;
    prefix.assign(folder, length);
    prefix += L'\\';
    if (!AppendUtf8(prefix, options.baseName))
        return false;
    prefix += L'-';
    if (prefix.size() > CrashSettings::LongestPrefix)
        return false;
    std::copy(prefix.begin(), prefix.end() + 1, settings.prefix);
    return true;
}

bool ReserveStack() noexcept
{
    ULONG size = 64 * 1024;
    return SetThreadStackGuarantee(&size) != FALSE;
}

} // namespace

} // namespace vansys::detail

using namespace vansys::detail;

TCrashHandler::ThreadScope::ThreadScope() noexcept : m_stack(ReserveStack() ? this : nullptr) {}
TCrashHandler::ThreadScope::~ThreadScope() {} // the reserve stays until the thread ends

bool TCrashHandler::Install(Options const &options) noexcept
try
{
    std::lock_guard const lock(g_mutex);
    if (g_isInstalled)
        return false;
    Installation &installation = g_installation;
    if (!SetPrefix(options, installation.settings))
        return false;
    installation.settings.writeText = options.writeText;
    installation.settings.writeDump = options.writeDump;
    installation.settings.dumpType = options.dumpType;
    g_reporter = 0;
    g_isReported = false;
    installation.begin = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    installation.end = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!installation.begin || !installation.end || !ReserveStack() || !PrepareCrashReports())
        return false;
    installation.thread = Handle(CreateThread(nullptr, 0, &RunReporter, nullptr, 0, nullptr));
    if (!installation.thread)
        return false;
    installation.previousFilter = SetUnhandledExceptionFilter(&OnUnhandled);
    installation.previousAbort = std::signal(SIGABRT, &OnAbort);
    g_isInstalled = true;
    return true;
}
catch (std::bad_alloc const &)
{
    return false;
}

void TCrashHandler::Uninstall() noexcept
{
    std::lock_guard const lock(g_mutex);
    if (!g_isInstalled)
        return;
    // What others have put in the place of ours goes back there.
    LPTOP_LEVEL_EXCEPTION_FILTER const filter = SetUnhandledExceptionFilter(g_installation.previousFilter);
    if (filter != &OnUnhandled)
        SetUnhandledExceptionFilter(filter);
    SignalHandler const abort = std::signal(SIGABRT, g_installation.previousAbort);
    if (abort != &OnAbort)
        std::signal(SIGABRT, abort);
    SetEvent(g_installation.begin.Get());
    WaitForSingleObject(g_installation.thread.Get(), INFINITE);
    g_isInstalled = false;
}
