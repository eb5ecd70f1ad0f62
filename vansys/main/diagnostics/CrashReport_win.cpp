#include "main/diagnostics/CrashReport_win.h"

#include "main/diagnostics/DebugHelp_win.h"
#include "main/diagnostics/Frames.h"
#include "main/diagnostics/Symbols.h"
#include "main/platform/Handle.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <tlhelp32.h>

namespace vansys::detail
{

namespace
{

struct NamedCode
{
    DWORD code;
    std::string_view text;
};

constexpr NamedCode Codes[] = {
    {EXCEPTION_ACCESS_VIOLATION, "access violation"},
    {EXCEPTION_IN_PAGE_ERROR, "a page that cannot be read in"},
    {EXCEPTION_ILLEGAL_INSTRUCTION, "no such instruction"},
    {EXCEPTION_PRIV_INSTRUCTION, "a privileged instruction"},
    {EXCEPTION_INT_DIVIDE_BY_ZERO, "an integer divided by zero"},
    {EXCEPTION_INT_OVERFLOW, "an integer overflow"},
    {EXCEPTION_FLT_DIVIDE_BY_ZERO, "a floating-point number divided by zero"},
    {EXCEPTION_FLT_INVALID_OPERATION, "an invalid floating-point operation"},
    {EXCEPTION_STACK_OVERFLOW, "the stack is exhausted"},
    {EXCEPTION_DATATYPE_MISALIGNMENT, "the address is not aligned"},
    {EXCEPTION_BREAKPOINT, "a breakpoint"},
    {0xC0000374, "the heap is corrupt"},
    {0x40000015, "abort"},
};

/// The name of a file of the report.
class CrashFileName
{
public:
    CrashFileName(CrashSettings const &settings, wchar_t const *extension) noexcept
    {
        wchar_t *end =
            std::copy_n(settings.prefix, std::char_traits<wchar_t>::length(settings.prefix), m_text);
        wchar_t digits[10];
        wchar_t *digit = std::end(digits);
        DWORD number = GetCurrentProcessId();
        do
            *--digit = static_cast<wchar_t>(L'0' + number % 10);
        while ((number /= 10) != 0);
        end = std::copy(digit, std::end(digits), end);
        std::copy_n(extension, std::char_traits<wchar_t>::length(extension) + 1, end);
    }

    wchar_t const *Get() const noexcept { return m_text; }

private:
    wchar_t m_text[CrashSettings::LongestPrefix + 32];
};

/// Where the text goes: the file, or standard error when that cannot be made.
class TextTarget
{
public:
    /// `other` says when this must not write any more.
    TextTarget(CrashSettings const &settings, DWORD disposition,
               std::atomic<bool> const *isAbandoned) noexcept
        : m_file(CreateFileW(CrashFileName(settings, L".txt").Get(), FILE_APPEND_DATA,
                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                             nullptr)),
          m_isAbandoned(isAbandoned)
    {
    }

    static bool Write(void *target, char const *text, std::size_t count) noexcept
    {
        TextTarget const &self = *static_cast<TextTarget *>(target);
        if (self.m_isAbandoned != nullptr && *self.m_isAbandoned)
            return false;
        DWORD written = 0;
        return WriteFile(self.m_file ? self.m_file.Get() : GetStdHandle(STD_ERROR_HANDLE), text,
                         static_cast<DWORD>(count), &written, nullptr) &&
               written == count;
    }

private:
    Handle m_file;
    std::atomic<bool> const *m_isAbandoned;
};

void AppendHeader(CrashText &text, Crash const &crash) noexcept
{
    EXCEPTION_RECORD const &record = *crash.pointers->ExceptionRecord;
    (text += "crash report 1\nsignal: exception 0x").Hex(record.ExceptionCode, 8);
    for (NamedCode const &each : Codes)
        if (each.code == record.ExceptionCode)
            (text += ", ") += each.text;
    bool const hasAddress = (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION ||
                             record.ExceptionCode == EXCEPTION_IN_PAGE_ERROR) &&
                            record.NumberParameters >= 2;
    if (hasAddress)
        (text += "\naddress: 0x").Hex(record.ExceptionInformation[1]);
    (text += "\nprocess: ").Decimal(GetCurrentProcessId());
    (text += "\nthread: ").Decimal(crash.thread);
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    constexpr std::uint64_t TicksPerSecond = 10'000'000;
    constexpr std::uint64_t SecondsUntil1970 = 11'644'473'600; // since 1601
    std::uint64_t const ticks = (std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
    AppendUtcTime(text += "\ntime: ", static_cast<std::int64_t>(ticks / TicksPerSecond - SecondsUntil1970));
    text += '\n';
}

void AppendRegisters(CrashText &text, CONTEXT const &context) noexcept
{
    struct Register
    {
        std::string_view name;
        DWORD value;
    };
    Register const registers[] = {
        {"eax", context.Eax}, {"ebx", context.Ebx},       {"ecx", context.Ecx}, {"edx", context.Edx},
        {"esi", context.Esi}, {"edi", context.Edi},       {"ebp", context.Ebp}, {"esp", context.Esp},
        {"eip", context.Eip}, {"eflags", context.EFlags},
    };
    text += "registers:\n";
    for (Register const &each : registers)
        (((text += each.name) += " 0x").Hex(each.value, 8)) += '\n';
}

void AppendFrame(CrashText &text, std::size_t number, Frame const &frame)
{
    Symbol const symbol = LookUpSymbol(frame.Instruction());
    CrashFrameLine line;
    line.number = number;
    line.programCounter = frame.programCounter;
    line.function = symbol.function;
    line.file = symbol.file;
    line.line = symbol.line;
    line.module = symbol.module;
    AppendCrashFrame(text, line);
}

void AppendModules(CrashText &text) noexcept
{
    text += "modules:\n";
    Handle const snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, GetCurrentProcessId()));
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL found = snapshot ? Module32FirstW(snapshot.Get(), &entry) : FALSE; found;
         found = Module32NextW(snapshot.Get(), &entry))
    {
        auto const base = reinterpret_cast<std::uintptr_t>(entry.modBaseAddr);
        (text += "0x").Hex(base) += " 0x";
        text.Hex(base + entry.modBaseSize) += ' ';
        char name[3 * MAX_PATH];
        int const size =
            WideCharToMultiByte(CP_UTF8, 0, entry.szExePath, -1, name, sizeof(name), nullptr, nullptr);
        (text += std::string_view(name, size > 0 ? static_cast<std::size_t>(size - 1) : 0)) += '\n';
    }
}

CrashText &AppendTypeName(CrashText &text, std::type_info const &type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return text += name ? name.get() : type.name();
}

void WriteText(Crash const &crash, CrashProgress &progress)
{
    TextTarget target(*crash.settings, CREATE_ALWAYS, &progress.isAbandoned);
    CrashText text(&TextTarget::Write, &target);
    AppendHeader(text, crash);
    if (crash.exception != nullptr)
        AppendTypeName(text += "exception: ", *crash.exception) += '\n';
    text.Flush();
    progress.hasBegun = true;

    CrashFrames frames;
    Handle const thread(OpenThread(THREAD_ALL_ACCESS, FALSE, crash.thread));
    for (Frame const &frame : WalkFrom(thread.Get(), *crash.pointers->ContextRecord).frames)
        frames.Add(frame);
    AppendCrashStack(text, frames,
                     [&](std::size_t number, Frame const &frame) { AppendFrame(text, number, frame); });
    AppendRegisters(text, *crash.pointers->ContextRecord);
    AppendModules(text);
    text += EndOfCrashReport;
    progress.isTextEnded = text.Flush();
}

/// Appears under its name when it is complete.
void WriteDump(Crash const &crash) noexcept
{
    CrashFileName const name(*crash.settings, L".dmp");
    CrashFileName const temporary(*crash.settings, L".dmp.tmp");
    bool isWritten = false;
    {
        Handle const file(CreateFileW(temporary.Get(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file)
            return;
        MINIDUMP_EXCEPTION_INFORMATION information{crash.thread, crash.pointers, FALSE};
        isWritten = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file.Get(),
                                      static_cast<MINIDUMP_TYPE>(crash.settings->dumpType), &information,
                                      nullptr, nullptr) != FALSE;
    }
    if (!isWritten || !MoveFileExW(temporary.Get(), name.Get(), MOVEFILE_REPLACE_EXISTING))
        DeleteFileW(temporary.Get());
}

} // namespace

bool PrepareCrashReports()
{
    return LoadModules({});
}

void WriteCrashReport(Crash const &crash, CrashProgress &progress) noexcept
{
    if (crash.settings->writeText)
    {
        try
        {
            WriteText(crash, progress);
        }
        catch (std::bad_alloc const &)
        {
            CompleteCrashReport(crash, progress);
        }
    }
    if (crash.settings->writeDump)
        WriteDump(crash);
}

void CompleteCrashReport(Crash const &crash, CrashProgress &progress) noexcept
{
    if (!crash.settings->writeText || progress.isTextEnded)
        return;
    progress.isAbandoned = true;
    TextTarget target(*crash.settings, progress.hasBegun ? OPEN_ALWAYS : CREATE_ALWAYS, nullptr);
    CrashText text(&TextTarget::Write, &target);
    if (progress.hasBegun)
        text += '\n';
    else
        AppendHeader(text, crash);
    CrashFrames frames;
    frames.Add({crash.pointers->ContextRecord->Eip, true});
    AppendCrashStack(text, frames,
                     [&](std::size_t number, Frame const &frame) { AppendPlainFrame(text, number, frame); });
    AppendRegisters(text, *crash.pointers->ContextRecord);
    (text += "(not finished)\n") += EndOfCrashReport;
    text.Flush();
    progress.isTextEnded = true;
}

} // namespace vansys::detail
