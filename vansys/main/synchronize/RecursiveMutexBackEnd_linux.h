/// @file
/// RecursiveMutexBackEnd of Linux: a word that says whether the mutex is held, and beside it who holds it.
#pragma once

#include "main/platform/Atomic.h"
#include "main/platform/Futex.h"
#include "main/platform/ThreadIdentity.h"

#include <cstdint>

namespace vansys::detail
{

/// After "Futexes Are Tricky" by Ulrich Drepper, third mutex: whoever has slept takes the mutex as one with
/// sleepers, as it cannot know whether it was the last of them. That costs one call that wakes nobody, and
/// saves counting the sleepers.
///
/// To hold it and to have sleepers are bits of their own here. `Lock` sets the one bit without looking at the
/// word before, which costs less than to compare it too, and leaves the other bit alone: only who unlocks
/// strikes it out, and wakes a sleeper for it.
///
/// The ways without waiting are here to be inlined into what the library exports.
class RecursiveMutexBackEnd
{
public:
    void Lock() noexcept
    {
        if (!TryLock())
            WaitAndTake();
    }

    bool TryLock() noexcept
    {
        ThreadIdentity const self = CurrentThreadIdentity();
        if (IsOwnedBy(self))
            ++m_nestedLocks;
        else if (TryTake())
            SetOwner(self);
        else
            return false;
        return true;
    }

    void Unlock() noexcept
    {
        if (m_nestedLocks != 0)
        {
            --m_nestedLocks;
            return;
        }
        SetOwner(nullptr);
        if (m_state.exchange(Free, std::memory_order_release) & WithSleepers)
            FutexWakeOne(m_state);
    }

private:
    enum : std::uint32_t
    {
        Free = 0,
        Held = 1,
        WithSleepers = 2, ///< beside Held
    };

    /// Relaxed: a thread finds its own identity only where it has stored it itself.
    bool IsOwnedBy(ThreadIdentity self) const noexcept
    {
        return m_owner.load(std::memory_order_relaxed) == self;
    }

    void SetOwner(ThreadIdentity owner) noexcept { m_owner.store(owner, std::memory_order_relaxed); }

    bool TryTake() noexcept { return !(m_state.fetch_or(Held, std::memory_order_acquire) & Held); }

    void WaitAndTake() noexcept;

    FutexWord m_state{Free};
    std::uint32_t m_nestedLocks = 0; // used by the owner only
    Atomic<ThreadIdentity> m_owner{nullptr};
};

} // namespace vansys::detail
