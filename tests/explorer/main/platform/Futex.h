/// @file
/// In place of the library's header: sleeping and waking as the scheduler has it.
#pragma once

#include "main/platform/Atomic.h"
#include "main/platform/Clock.h"

#include <cstdint>

namespace vansys::detail
{

using FutexWord = Atomic<std::uint32_t>;
using explorer::Scheduler;
using explorer::Site;

inline bool FutexWaitUntil(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline,
                           Site site = Site::Here()) noexcept
{
    return Scheduler::s_current->Sleep(word.Address(), expected, deadline, site);
}

inline void FutexWait(FutexWord const &word, std::uint32_t expected, Site site = Site::Here()) noexcept
{
    Scheduler::s_current->Sleep(word.Address(), expected, explorer::Never, site);
}

inline void FutexWakeOne(FutexWord const &word, Site site = Site::Here()) noexcept
{
    Scheduler::s_current->Wake(word.Address(), explorer::Sleepers::One, site);
}

inline void FutexWakeAll(FutexWord const &word, Site site = Site::Here()) noexcept
{
    Scheduler::s_current->Wake(word.Address(), explorer::Sleepers::All, site);
}

} // namespace vansys::detail
