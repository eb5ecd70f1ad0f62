/// @file
/// Clock: the time by which the library waits and samples.
#pragma once

#include <atomic>
#include <chrono>
#include <limits>

namespace vansys::detail
{

/// Monotonic, and not moved when the time of day is set.
///
/// A test can stop it and set it by hand: then an hour passes at once, and a wait that must not time out is
/// seen not to. What samples the time and the waits of Linux go by it. The waits of Windows are relative, and
/// it is the kernel that times them: a stopped clock does not stop those.
///
/// All functions may be called on any thread. They order no memory.
class Clock
{
public:
    using Duration = std::chrono::steady_clock::duration;
    using TimePoint = std::chrono::steady_clock::time_point;

    static TimePoint Now() noexcept
    {
        Duration::rep const stoppedAt = s_stoppedAt.load(std::memory_order_relaxed);
        if (stoppedAt == Runs) [[likely]]
            return std::chrono::steady_clock::now();
        return TimePoint(Duration(stoppedAt));
    }

    /// Stops the clock at this time, or sets the stopped clock. For tests. To be stopped before a thread
    /// waits for a deadline: a wait that has begun by the running clock goes on by it.
    static void Stop(TimePoint time) noexcept
    {
        s_stoppedAt.store(time.time_since_epoch().count(), std::memory_order_relaxed);
    }

    /// Lets the clock run again, and show the real time.
    static void GoOn() noexcept { s_stoppedAt.store(Runs, std::memory_order_relaxed); }

    static bool IsStopped() noexcept { return s_stoppedAt.load(std::memory_order_relaxed) != Runs; }

private:
    static constexpr Duration::rep Runs = std::numeric_limits<Duration::rep>::min();

    inline static constinit std::atomic<Duration::rep> s_stoppedAt{Runs};
};

} // namespace vansys::detail
