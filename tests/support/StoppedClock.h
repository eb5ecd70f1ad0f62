/// @file
/// Time that passes only when a test says so. For programs that are linked from the library's objects.
#pragma once

#include "main/platform/Clock.h"

/// While it lives, the library's clock shows the time of its construction and what was added since. To be
/// created before threads wait.
class StoppedClock
{
public:
    StoppedClock() { vansys::detail::Clock::Stop(vansys::detail::Clock::Now()); }

    StoppedClock(StoppedClock const &) = delete;
    StoppedClock &operator=(StoppedClock const &) = delete;

    ~StoppedClock() { vansys::detail::Clock::GoOn(); }

    void Advance(vansys::detail::Clock::Duration duration)
    {
        vansys::detail::Clock::Stop(vansys::detail::Clock::Now() + duration);
    }
};
