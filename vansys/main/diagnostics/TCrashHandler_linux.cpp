#include "vansys/TCrashHandler.h"

#include "main/diagnostics/CrashReport_linux.h"
#include "main/diagnostics/MinidumpWriter.h"
#include "main/diagnostics/RawSystem_linux.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <ctime>
#include <limits.h>
#include <mutex>
#include <new>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

constexpr int Signals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

constexpr std::size_t StackSize = 256 * 1024;
constexpr std::size_t GuardSize = 4096; ///< at the end of a stack, so that going beyond it is noticed

// In milliseconds, altogether less than the two seconds that a host may reckon with.
constexpr int LimitOfCopy = 1400;
constexpr int LimitOfRest = 300;
constexpr int LimitOfOthers = 3000;

/// What the handler goes by. Written by `Install`, before the handlers are there.
CrashSettings g_settings;
struct sigaction g_previous[std::size(Signals)];

std::mutex g_mutex; ///< for Install and Uninstall
bool g_isInstalled = false;

// The rest belongs to the handler.
std::atomic<int> g_reporter{0}; ///< the thread that reports; in the copy of the process, that copy's
std::atomic<bool> g_isReported{false};
sigjmp_buf *g_guard = nullptr; ///< of the reporting thread
bool g_isCopy = false;

void OnCrash(int signal, siginfo_t *info, void *context) noexcept;

bool IsOurs(struct sigaction const &action) noexcept
{
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == &OnCrash;
}

/// Leaves alone what others have put in the place of ours.
void RestorePreviousHandlers() noexcept
{
    for (std::size_t i = 0; i < std::size(Signals); ++i)
    {
        struct sigaction current;
        if (sigaction(Signals[i], nullptr, &current) == 0 && IsOurs(current))
            sigaction(Signals[i], &g_previous[i], nullptr);
    }
}

/// Has the signal come again, as it was, when the handler has returned: then with the registers and the mask
/// of the place of the crash, and to whom it would have come without us.
void PassOn(int signal, siginfo_t *info) noexcept
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int const each : Signals)
        sigaddset(&signals, each);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    RestorePreviousHandlers();
    RawWord const process = RawCall(SYS_getpid);
    RawWord const thread = RawCall(SYS_gettid);
    if (RawCall(SYS_rt_tgsigqueueinfo, process, thread, signal, info) < 0)
        RawCall(SYS_tgkill, process, thread, signal);
}

/// Waits for the copy of this process to end. Returns whether it has.
bool WaitForCopy(int copy, std::int64_t deadline) noexcept
{
    for (;;)
    {
        RawWord const ended = RawCall(SYS_wait4, copy, nullptr, WNOHANG | __WALL, nullptr);
        if (ended == copy || ended == -ECHILD)
            return true;
        if (RawMilliseconds() >= deadline)
            return false;
        RawSleepMicroseconds(500);
    }
}

void Report(Crash const &crash) noexcept
{
    std::int64_t const begin = RawMilliseconds();
    void *const page =
        mmap(nullptr, sizeof(CrashProgress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
    {
        static CrashProgress s_progress;
        CompleteCrashReport(crash, s_progress, LimitOfRest);
        return;
    }
    CrashProgress &progress = *new (page) CrashProgress;

    // A copy as by fork, but without the handlers of fork, which may need locks, and without a signal at its
    // end, which the host might take for that of a child of its own.
    RawWord const copy = RawCall(SYS_clone, 0, nullptr, nullptr, nullptr, 0);
    if (copy == 0)
    {
        g_isCopy = true;
        g_reporter = static_cast<int>(RawCall(SYS_gettid));
        WriteCrashReport(crash, progress);
    }
    if (copy > 0)
    {
        // Where only ancestors may look at a process, this is what lets the copy do it.
        prctl(PR_SET_PTRACER, copy);
        progress.mayBegin = true;
        int const child = static_cast<int>(copy);
        if (!WaitForCopy(child, begin + LimitOfCopy))
        {
            RawCall(SYS_kill, child, SIGKILL);
            WaitForCopy(child, RawMilliseconds() + LimitOfRest / 3);
        }
        prctl(PR_SET_PTRACER, 0);
    }
    CompleteCrashReport(crash, progress, LimitOfRest);
    if (copy < 0 && crash.settings->writeDump)
    {
        CrashedThread const thread{crash.thread, crash.info, crash.context};
        WriteOwnMinidump(CrashFileName(crash, ".dmp").Get(), crash.settings->dumpType, &thread);
    }
}

void OnCrash(int signal, siginfo_t *info, void *context) noexcept
{
    int const error = errno;
    int const thread = static_cast<int>(RawCall(SYS_gettid));
    int nobody = 0;
    if (g_reporter.compare_exchange_strong(nobody, thread))
    {
        Crash const crash{
            &g_settings, static_cast<int>(RawCall(SYS_getpid)), thread, std::time(nullptr), signal,
            info,        static_cast<ucontext_t *>(context)};
        Report(crash);
        g_isReported = true;
    }
    else if (nobody == thread) // a crash in here
    {
        if (g_guard != nullptr)
            siglongjmp(*g_guard, 1);
        if (g_isCopy)
            _exit(1);
    }
    else
    {
        std::int64_t const deadline = RawMilliseconds() + LimitOfOthers;
        while (!g_isReported && RawMilliseconds() < deadline)
            RawSleepMicroseconds(2000);
    }
    PassOn(signal, info);
    errno = error;
}

/// Makes "/folder/base-" of the options. False when that is not possible.
bool SetPrefix(TCrashHandler::Options const &options, char *prefix) noexcept
{
    char current[PATH_MAX] = "";
    bool const isAbsolute = options.folder.starts_with('/');
    if (!isAbsolute && getcwd(current, sizeof(current)) == nullptr)
        return false;
    char *end = prefix;
    for (std::string_view const part : {std::string_view(current), std::string_view(isAbsolute ? "" : "/"),
                                        std::string_view(options.folder), std::string_view("/"),
                                        std::string_view(options.baseName), std::string_view("-")})
    {
        auto const room = CrashSettings::LongestPrefix - static_cast<std::size_t>(end - prefix);
        if (part.size() > room || part.find('\0') != std::string_view::npos)
            return false;
        end = std::copy(part.begin(), part.end(), end);
    }
    *end = '\0';
    return true;
}

} // namespace

bool RunGuarded(void (*function)(void *), void *argument) noexcept
{
    sigjmp_buf guard;
    if (sigsetjmp(guard, 1) != 0)
    {
        g_guard = nullptr;
        return false;
    }
    g_guard = &guard;
    function(argument);
    g_guard = nullptr;
    return true;
}

} // namespace vansys::detail

namespace
{

using namespace vansys::detail;

/// What stands at the upper end of an alternate stack, which is its beginning.
struct StackRecord
{
    stack_t previous;
    void *memory;
};

/// Puts the calling thread onto a new alternate stack. Null without memory.
StackRecord *EnterAlternateStack() noexcept
{
    constexpr std::size_t Size = GuardSize + StackSize;
    void *const memory = mmap(nullptr, Size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    char *const begin = static_cast<char *>(memory);
    auto *const record = new (begin + Size - sizeof(StackRecord)) StackRecord{};
    record->memory = memory;
    stack_t stack{};
    stack.ss_sp = begin + GuardSize;
    stack.ss_size = StackSize - sizeof(StackRecord);
    if (mprotect(memory, GuardSize, PROT_NONE) != 0 || sigaltstack(&stack, &record->previous) != 0)
    {
        munmap(memory, Size);
        return nullptr;
    }
    return record;
}

} // namespace

TCrashHandler::ThreadScope::ThreadScope() noexcept : m_stack(EnterAlternateStack()) {}

TCrashHandler::ThreadScope::~ThreadScope()
{
    if (m_stack == nullptr)
        return;
    auto *const record = static_cast<StackRecord *>(m_stack);
    char *const memory = static_cast<char *>(record->memory);
    stack_t current{};
    sigaltstack(nullptr, &current);
    // Somebody may have put another one in its place, and expects to find that.
    if (current.ss_sp == memory + GuardSize)
    {
        stack_t const previous = record->previous;
        sigaltstack(&previous, nullptr);
    }
    munmap(memory, GuardSize + StackSize);
}

bool TCrashHandler::Install(Options const &options) noexcept
{
    std::lock_guard const lock(g_mutex);
    if (g_isInstalled)
        return false;
    CrashSettings &settings = g_settings;
    if (!SetPrefix(options, settings.prefix))
        return false;
    settings.writeText = options.writeText;
    settings.writeDump = options.writeDump;
    settings.dumpType = options.dumpType;
    settings.textDescriptor = options.textDescriptor;

    stack_t current{};
    sigaltstack(nullptr, &current);
    if (((current.ss_flags & SS_DISABLE) != 0 || current.ss_size < StackSize / 2) &&
        EnterAlternateStack() == nullptr)
        return false;

    g_reporter = 0;
    g_isReported = false;

    struct sigaction action
    {
    };
    action.sa_sigaction = &OnCrash;
    // A crash in the handler has to come to the handler. Everything else has to wait.
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigfillset(&action.sa_mask);
    for (int const signal : Signals)
        sigdelset(&action.sa_mask, signal);
    for (std::size_t i = 0; i < std::size(Signals); ++i)
        sigaction(Signals[i], nullptr, &g_previous[i]);
    for (int const signal : Signals)
        sigaction(signal, &action, nullptr);
    g_isInstalled = true;
    return true;
}

void TCrashHandler::Uninstall() noexcept
{
    std::lock_guard const lock(g_mutex);
    if (g_isInstalled)
        RestorePreviousHandlers();
    g_isInstalled = false;
}
