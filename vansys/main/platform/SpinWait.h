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

/// Tries for about as long as it takes to fall asleep and be woken. That pays where the signal is about to
/// come from another processor, and is time lost where it is not; so each thread learns: every wait for which
/// the signal comes too late halves the attempts of the next one. A while after there are none left, it
/// starts over. The thread learns and not the event, as many an event is waited for only once.
///
/// It never yields the processor: on a busy machine it would get it back long after the signal.
template <class Attempt>
bool SpinWhileItPays(Attempt attempt)
{
    constexpr int MaxAttempts = 200;
    constexpr int Halvings = 8;
    constexpr int WaitsWithout = 250;

    static thread_local constinit int misses = 0; // in a row

    int const attempts = misses < Halvings ? MaxAttempts >> misses : 0;
    for (int i = 0; i < attempts; ++i)
    {
        if (attempt())
        {
            misses = 0;
            return true;
        }
        CpuRelax();
    }
    misses = (misses + 1) % (Halvings + WaitsWithout);
    return false;
}

} // namespace vansys::detail
