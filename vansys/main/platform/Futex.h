/// @file
/// Sleeping until a word in memory changes: what the synchronisation of Linux is built on. Linux only.
///
/// The kernel looks at the word and puts the thread to sleep in one step, so that a change of the word
/// between the caller's look and the sleep is never missed. It is entered by these functions only; words on
/// which nobody sleeps are handled by atomic operations alone.
///
/// The functions order no memory: the operations on the word do. A wait may end for no reason, so every wait
/// is part of a loop that looks at the word again. A word may be woken by its address after it was destroyed,
/// which at most wakes a sleeper of something else for no reason. None of the functions changes `errno`.
#pragma once

#include "main/platform/Atomic.h"
#include "main/platform/Clock.h"

#include <cstdint>

namespace vansys::detail
{

/// Shared by the threads of one process.
using FutexWord = Atomic<std::uint32_t>;

/// Sleeps while the word is `expected`, until woken.
void FutexWait(FutexWord const &word, std::uint32_t expected) noexcept;

/// The same, until the deadline at most. Returns false when the deadline has passed. It is absolute, so that
/// a wait that goes on after a signal handler or a wake-up for no reason is not prolonged.
bool FutexWaitUntil(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline) noexcept;

/// Wakes one of the threads that sleep on the word.
void FutexWakeOne(FutexWord const &word) noexcept;

/// Wakes all threads that sleep on the word.
void FutexWakeAll(FutexWord const &word) noexcept;

} // namespace vansys::detail
