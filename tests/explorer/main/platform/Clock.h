/// @file
/// In place of the library's header: a clock that stands still but when a time limit passes.
#pragma once

#include "explorer/Scheduler.h"

namespace vansys::detail
{

struct Clock
{
    using Duration = std::chrono::steady_clock::duration;
    using TimePoint = std::chrono::steady_clock::time_point;

    static TimePoint Now() noexcept { return explorer::Scheduler::s_current->Now(); }
};

} // namespace vansys::detail
