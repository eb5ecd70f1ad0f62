#include "support/FutexCalls.h"

#include <atomic>
#include <cerrno>
#include <sys/syscall.h>
#include <utility>

// The linker sends the library's calls of syscall() here, and ours under the second name to the real one.
extern "C"
{
    long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f);
    long __real_syscall(long number, long a, long b, long c, long d, long e, long f);
}

namespace
{

std::atomic<int> g_calls{0};
std::function<void()> g_atTimeLimit;

} // namespace

long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f)
{
    if (number == SYS_futex)
        ++g_calls;
    long const result = __real_syscall(number, a, b, c, d, e, f);
    if (result == -1 && errno == ETIMEDOUT && g_atTimeLimit)
    {
        std::exchange(g_atTimeLimit, nullptr)();
        errno = ETIMEDOUT;
    }
    return result;
}

FutexCalls::FutexCalls() : m_before(g_calls) {}

void FutexCalls::AtNextTimeLimit(std::function<void()> function)
{
    g_atTimeLimit = std::move(function);
}

int FutexCalls::Count() const
{
    return g_calls - m_before;
}
