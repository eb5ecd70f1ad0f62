/// @file
/// Watching for a moment what another thread is about to change, before falling asleep over it.
#pragma once

namespace vansys::detail
{

/// Leaves the processor core to its other work for a moment, without giving up the time slice.
inline void CpuRelax() noexcept
{
#if defined(__i386__) || defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    __asm__ __volatile__("isb");
#endif
}

/// Looks whether `condition` has become true, for a moment, and returns whether it has. The caller has found
/// it false.
///
/// The moment is long enough for a short piece of work under a lock, and short against being put to sleep and
/// woken. The looks are further and further apart: each one takes the memory that is watched away from the
/// thread that works with it, so that watching closely slows down what is waited for.
template <class Condition>
bool SpinUntil(Condition condition) noexcept
{
    for (int pauses = 4; pauses <= 64; pauses *= 2)
    {
        for (int i = 0; i < pauses; ++i)
            CpuRelax();
        if (condition())
            return true;
    }
    return false;
}

} // namespace vansys::detail
