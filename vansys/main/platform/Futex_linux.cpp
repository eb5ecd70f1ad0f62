#include "main/platform/Futex.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

static_assert(sizeof(FutexWord) == sizeof(std::uint32_t) && FutexWord::is_always_lock_free,
              "the kernel reads the word as it lies in memory");

/// Returns 0 or the error number. The caller of a lock expects to find `errno` as it was.
int Futex(FutexWord const &word, int operation, std::uint32_t value, timespec const *deadline) noexcept
{
    int const savedError = errno;
    long const result = syscall(SYS_futex, &word, operation | FUTEX_PRIVATE_FLAG, value, deadline, nullptr,
                                FUTEX_BITSET_MATCH_ANY);
    int const error = result < 0 ? errno : 0;
    errno = savedError;
    return error;
}

/// A null deadline never passes. The bitset form of the wait is the one whose time limit is absolute. Being
/// interrupted by a signal handler is one of the reasons for which waits end for no reason.
bool Wait(FutexWord const &word, std::uint32_t expected, timespec const *deadline) noexcept
{
    return Futex(word, FUTEX_WAIT_BITSET, expected, deadline) != ETIMEDOUT;
}

bool WaitUntil(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline) noexcept
{
    using namespace std::chrono;
    // The kernel refuses times before the start of the clock instead of taking them as passed.
    nanoseconds const sinceStart = std::max<nanoseconds>(deadline.time_since_epoch(), nanoseconds::zero());
    seconds const whole = floor<seconds>(sinceStart);
    timespec limit{};
    limit.tv_sec = static_cast<time_t>(whole.count());
    limit.tv_nsec = static_cast<long>((sinceStart - whole).count());
    return Wait(word, expected, &limit);
}

/// The kernel does not know that clock, so the thread gets up now and then and looks at it.
bool WaitByStoppedClock(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline) noexcept
{
    if (Clock::Now() >= deadline)
        return false;
    WaitUntil(word, expected, std::chrono::steady_clock::now() + std::chrono::milliseconds(1));
    return true;
}

} // namespace

void FutexWait(FutexWord const &word, std::uint32_t expected) noexcept
{
    Wait(word, expected, nullptr);
}

bool FutexWaitUntil(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline) noexcept
{
    if (Clock::IsStopped()) [[unlikely]]
        return WaitByStoppedClock(word, expected, deadline);
    return WaitUntil(word, expected, deadline);
}

void FutexWakeOne(FutexWord const &word) noexcept
{
    Futex(word, FUTEX_WAKE, 1, nullptr);
}

void FutexWakeAll(FutexWord const &word) noexcept
{
    Futex(word, FUTEX_WAKE, INT_MAX, nullptr);
}

} // namespace vansys::detail
