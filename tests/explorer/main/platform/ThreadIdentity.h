/// @file
/// In place of the library's header: the threads of the scheduler.
#pragma once

#include "explorer/Scheduler.h"

namespace vansys::detail
{

using ThreadIdentity = void const *;

inline ThreadIdentity CurrentThreadIdentity() noexcept
{
    return explorer::Scheduler::s_current->CurrentThread();
}

} // namespace vansys::detail
