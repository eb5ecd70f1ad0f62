#include "support/FutexCalls.h"

#include <atomic>
#include <sys/syscall.h>

// The linker sends the library's calls of syscall() here, and ours under the second name to the real one.
extern "C"
{
    long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f);
    long __real_syscall(long number, long a, long b, long c, long d, long e, long f);
}

namespace
{

std::atomic<int> g_calls{0};

} // namespace

long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f)
{
    if (number == SYS_futex)
        ++g_calls;
    return __real_syscall(number, a, b, c, d, e, f);
}

FutexCalls::FutexCalls() : m_before(g_calls) {}

int FutexCalls::Count() const
{
    return g_calls - m_before;
}
