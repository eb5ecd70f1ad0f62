#include "main/diagnostics/CrashReport_linux.h"

#include "main/diagnostics/CrashSymbols_linux.h"
#include "main/diagnostics/CrashText.h"
#include "main/diagnostics/MinidumpWriter.h"
#include "main/diagnostics/RawSystem_linux.h"
#include "main/diagnostics/Unwinder_linux.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <cxxabi.h>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

constexpr int LimitOfReport = 1200; ///< for the copy of the process, in milliseconds

struct NamedCode
{
    int signal;
    int code;
    std::string_view text;
};

/// The names of signals have the code 0.
constexpr NamedCode Codes[] = {
    {SIGSEGV, 0, "SIGSEGV"},
    {SIGSEGV, SEGV_MAPERR, "there is no memory at the address"},
    {SIGSEGV, SEGV_ACCERR, "the memory must not be accessed like that"},
    {SIGBUS, 0, "SIGBUS"},
    {SIGBUS, BUS_ADRALN, "the address is not aligned"},
    {SIGBUS, BUS_ADRERR, "there is nothing behind the address, as in a file that has become shorter"},
    {SIGBUS, BUS_OBJERR, "an error of the hardware"},
    {SIGILL, 0, "SIGILL"},
    {SIGILL, ILL_ILLOPC, "no such instruction"},
    {SIGILL, ILL_ILLOPN, "no such operand"},
    {SIGILL, ILL_PRVOPC, "a privileged instruction"},
    {SIGFPE, 0, "SIGFPE"},
    {SIGFPE, FPE_INTDIV, "an integer divided by zero"},
    {SIGFPE, FPE_INTOVF, "an integer overflow"},
    {SIGFPE, FPE_FLTDIV, "a floating-point number divided by zero"},
    {SIGFPE, FPE_FLTINV, "an invalid floating-point operation"},
    {SIGABRT, 0, "SIGABRT"},
};

std::string_view TextOf(int signal, int code) noexcept
{
    for (NamedCode const &each : Codes)
        if (each.signal == signal && each.code == code)
            return each.text;
    return {};
}

/// Whether the address belongs to the signal: a signal that somebody has sent has none.
bool HasAddress(siginfo_t const &info) noexcept
{
    return info.si_code > 0 && info.si_code != SI_KERNEL;
}

/// Where the text goes: the file, or what is there instead of it. Does not wait beyond the deadline for
/// somebody to read it.
class TextTarget
{
public:
    enum class Mode
    {
        Begin,
        Continue
    };

    TextTarget(Crash const &crash, Mode mode, std::int64_t deadline) noexcept : m_deadline(deadline)
    {
        m_descriptor = crash.settings->textDescriptor;
        if (m_descriptor >= 0)
            return;
        CrashFileName const name(crash, ".txt");
        // What has the name already may be a link that somebody has laid.
        if (mode == Mode::Begin)
            RawCall(SYS_unlinkat, AT_FDCWD, name.Get(), 0);
        int const flags = mode == Mode::Begin ? O_CREAT | O_EXCL : O_APPEND | O_NOFOLLOW;
        m_file.Open(RawCall(SYS_openat, AT_FDCWD, name.Get(), flags | O_WRONLY | O_CLOEXEC, 0600));
        m_descriptor = m_file ? static_cast<int>(m_file.Get()) : STDERR_FILENO;
    }

    static bool Write(void *target, char const *text, std::size_t count) noexcept
    {
        return static_cast<TextTarget *>(target)->Write(text, count);
    }

private:
    bool Write(char const *text, std::size_t count) const noexcept
    {
        while (count > 0)
        {
            pollfd waited{m_descriptor, POLLOUT, 0};
            auto const left = std::max<std::int64_t>(m_deadline - RawMilliseconds(), 0);
            RawWord const ready = RawCall(SYS_poll, &waited, 1, left);
            if (ready == -EINTR)
                continue;
            if (ready <= 0 || (waited.revents & POLLOUT) == 0 || (waited.revents & POLLERR) != 0)
                return false;
            RawWord const written = RawCall(SYS_write, m_descriptor, text, count);
            if (written == -EINTR || written == -EAGAIN)
                continue;
            if (written <= 0)
                return false;
            text += written;
            count -= static_cast<std::size_t>(written);
        }
        return true;
    }

    RawFile m_file;
    int m_descriptor;
    std::int64_t m_deadline;
};

/// Adds the name that the system knows a thread or process by.
void AppendName(CrashText &text, ProcName const &file) noexcept
{
    RawArray<char> name;
    if (!RawReadFile(file.Get(), name) || name.Size() < 2)
        return;
    text += " (";
    for (std::size_t i = 0; i + 1 < name.Size(); ++i)
        text += name[i] < ' ' ? '?' : name[i];
    text += ')';
}

void AppendHeader(CrashText &text, Crash const &crash) noexcept
{
    siginfo_t const &info = *crash.info;
    text += "crash report 1\nsignal: ";
    (text += TextOf(crash.signal, 0)) += " (";
    text.Decimal(static_cast<unsigned>(crash.signal)) += ')';
    std::string_view const reason = TextOf(crash.signal, info.si_code);
    if (info.si_code == SI_TKILL && info.si_pid == crash.process)
        text += ", raised by the program itself";
    else if (info.si_code == SI_USER || info.si_code == SI_TKILL || info.si_code == SI_QUEUE)
        (text += ", sent by process ").Decimal(static_cast<unsigned>(info.si_pid));
    else if (!reason.empty())
        (text += ", ") += reason;
    if (HasAddress(info))
        (text += "\naddress: 0x").Hex(reinterpret_cast<std::uintptr_t>(info.si_addr));
    (text += "\nprocess: ").Decimal(static_cast<unsigned>(crash.process));
    AppendName(text, ProcName("/proc/", crash.process, "/comm"));
    (text += "\nthread: ").Decimal(static_cast<unsigned>(crash.thread));
    AppendName(text, ProcName("/proc/", crash.process, "/task/", crash.thread, "/comm"));
    AppendUtcTime(text += "\ntime: ", crash.time);
    text += '\n';
}

struct RegisterName
{
    int index;
    std::string_view name;
};

constexpr RegisterName Registers[] = {
    {REG_RAX, "rax"}, {REG_RBX, "rbx"}, {REG_RCX, "rcx"},    {REG_RDX, "rdx"}, {REG_RSI, "rsi"},
    {REG_RDI, "rdi"}, {REG_RBP, "rbp"}, {REG_RSP, "rsp"},    {REG_R8, "r8"},   {REG_R9, "r9"},
    {REG_R10, "r10"}, {REG_R11, "r11"}, {REG_R12, "r12"},    {REG_R13, "r13"}, {REG_R14, "r14"},
    {REG_R15, "r15"}, {REG_RIP, "rip"}, {REG_EFL, "eflags"},
};

std::uintptr_t RegisterOf(Crash const &crash, int index) noexcept
{
    return static_cast<std::uintptr_t>(crash.context->uc_mcontext.gregs[index]);
}

void AppendRegisters(CrashText &text, Crash const &crash) noexcept
{
    text += "registers:\n";
    for (RegisterName const &each : Registers)
        (((text += each.name) += " 0x").Hex(RegisterOf(crash, each.index), 16)) += '\n';
}

/// Says what the exception is that is being handled, or that nobody handles: that is why most programs abort.
void AppendException(CrashText &text) noexcept
{
    std::type_info const *const type = abi::__cxa_current_exception_type();
    if (type == nullptr)
        return;
    text += "exception: ";
    AppendTypeName(text, type->name());
    text += '\n';
}

void CaptureFrames(Crash const &crash, CrashFrames &frames) noexcept
{
    // More than there are on the largest stack that is usual.
    constexpr std::size_t Most = std::size_t{1} << 18;
    RawArray<Frame> all;
    if (!all.Reserve(Most))
        return;
    all.Resize(Unwind(RegistersOf(*crash.context), all.begin(), Most).count);
    for (Frame const &frame : all)
        frames.Add(frame);
}

/// This process, a copy, ends when the time is over, even when everything hangs, and its signals are blocked.
void LimitTime() noexcept
{
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    int timer = 0;
    itimerspec time{};
    time.it_value.tv_sec = LimitOfReport / 1000;
    time.it_value.tv_nsec = LimitOfReport % 1000 * 1'000'000;
    if (RawCall(SYS_timer_create, CLOCK_MONOTONIC, &event, &timer) == 0)
        RawCall(SYS_timer_settime, timer, 0, &time, nullptr);
}

/// The files that the process has open stay open there. Here, they only stand in the way.
void FreeDescriptors(int kept) noexcept
{
    constexpr unsigned First = STDERR_FILENO + 1;
    if (kept > STDERR_FILENO)
    {
        RawCall(SYS_close_range, First, kept - 1, 0);
        RawCall(SYS_close_range, kept + 1, ~0U, 0);
    }
    else
        RawCall(SYS_close_range, First, ~0U, 0);
    for (int const resource : {RLIMIT_NOFILE, RLIMIT_FSIZE})
    {
        rlimit limit{};
        RawCall(SYS_getrlimit, resource, &limit);
        limit.rlim_cur = limit.rlim_max;
        RawCall(SYS_setrlimit, resource, &limit);
    }
}

void WriteText(Crash const &crash, CrashSymbols const *symbols, CrashProgress &progress) noexcept
{
    TextTarget target(crash, TextTarget::Mode::Begin, RawMilliseconds() + LimitOfReport);
    CrashText text(&TextTarget::Write, &target);
    AppendHeader(text, crash);
    if (crash.signal == SIGABRT)
        Guarded([&] { AppendException(text); });
    text.Flush();
    progress.hasBegun = true;
    AppendCrashStack(text, progress.frames,
                     [&](std::size_t number, Frame const &frame)
                     {
                         if (symbols != nullptr)
                             symbols->AppendFrame(text, number, frame);
                         else
                             AppendPlainFrame(text, number, frame);
                     });
    AppendRegisters(text, crash);
    if (symbols != nullptr)
        symbols->AppendModules(text);
    text += EndOfCrashReport;
    progress.isTextEnded = text.Flush();
}

} // namespace

CrashFileName::CrashFileName(Crash const &crash, char const *extension) noexcept
{
    char *end = std::copy_n(crash.settings->prefix, std::strlen(crash.settings->prefix), m_text);
    CrashText text(
        [](void *target, char const *digits, std::size_t count) noexcept
        {
            char *&to = *static_cast<char **>(target);
            to = std::copy_n(digits, count, to);
            return true;
        },
        &end);
    text.Decimal(static_cast<unsigned>(crash.process)) += extension;
    text.Flush();
    *end = '\0';
}

void WriteCrashReport(Crash const &crash, CrashProgress &progress) noexcept
{
    LimitTime();
    FreeDescriptors(crash.settings->textDescriptor);
    while (!progress.mayBegin)
        RawSleepMicroseconds(100);
    CrashSymbols symbolTable;
    CrashSymbols const *const symbols = symbolTable.Read() ? &symbolTable : nullptr;
    CaptureFrames(crash, progress.frames);
    if (crash.settings->writeText)
        WriteText(crash, symbols, progress);
    if (crash.settings->writeDump)
    {
        CrashedThread const thread{crash.thread, crash.info, crash.context};
        WriteMinidump(crash.process, CrashFileName(crash, ".dmp").Get(), crash.settings->dumpType, &thread);
    }
    for (;;)
        RawCall(SYS_exit_group, 0);
}

void CompleteCrashReport(Crash const &crash, CrashProgress &progress, int limit) noexcept
{
    if (!crash.settings->writeText || progress.isTextEnded)
        return;
    bool const hasBegun = progress.hasBegun;
    if (progress.frames.Total() == 0)
        CaptureFrames(crash, progress.frames);
    TextTarget target(crash, hasBegun ? TextTarget::Mode::Continue : TextTarget::Mode::Begin,
                      RawMilliseconds() + limit);
    CrashText text(&TextTarget::Write, &target);
    if (hasBegun)
        text += '\n';
    else
        AppendHeader(text, crash);
    AppendCrashStack(text, progress.frames,
                     [&](std::size_t number, Frame const &frame) { AppendPlainFrame(text, number, frame); });
    AppendRegisters(text, crash);
    (text += "(not finished)\n") += EndOfCrashReport;
}

} // namespace vansys::detail
