#include "vansys/TRecursiveMutex.h"

#include "main/platform/Atomic.h"
#include "main/platform/Futex.h"
#include "main/platform/SpinWait.h"
#include "main/platform/ThreadIdentity.h"

#include <algorithm>

using namespace vansys::detail;

/// A word that says whether the mutex is held, and beside it who holds it. After "Futexes Are Tricky" by
/// Ulrich Drepper, third mutex: whoever has slept takes the mutex as one with sleepers, as it cannot know
/// whether it was the last of them. That costs one call that wakes nobody, and saves counting the sleepers.
///
/// Other than there, `Lock` exchanges the word without looking at it, which costs less than to compare it
/// too. The exchange may strike out that there are sleepers. Then it is up to this thread to take the mutex
/// as one with sleepers; until it does, they only sleep on.
class TRecursiveMutex::Implementation
{
public:
    void Lock() noexcept
    {
        ThreadIdentity const self = CurrentThreadIdentity();
        if (IsOwnedBy(self))
        {
            ++m_nestedLocks;
            return;
        }
        std::uint32_t const state = m_state.exchange(Held, std::memory_order_acquire);
        if (state == Free)
            m_owner.store(self, std::memory_order_relaxed);
        else
            WaitAndTake(self, state);
    }

    bool TryLock() noexcept
    {
        ThreadIdentity const self = CurrentThreadIdentity();
        if (IsOwnedBy(self))
        {
            ++m_nestedLocks;
            return true;
        }
        std::uint32_t state = Free;
        if (!m_state.compare_exchange_strong(state, Held, std::memory_order_acquire,
                                             std::memory_order_relaxed))
            return false;
        m_owner.store(self, std::memory_order_relaxed);
        return true;
    }

    void Unlock() noexcept
    {
        if (m_nestedLocks != 0)
        {
            --m_nestedLocks;
            return;
        }
        m_owner.store(nullptr, std::memory_order_relaxed);
        if (m_state.exchange(Free, std::memory_order_release) == HeldWithSleepers)
            FutexWakeOne(m_state);
    }

private:
    enum : std::uint32_t
    {
        Free,
        Held,
        HeldWithSleepers,
    };

    /// Relaxed: a thread finds its own identity only where it has stored it itself.
    bool IsOwnedBy(ThreadIdentity self) const noexcept
    {
        return m_owner.load(std::memory_order_relaxed) == self;
    }

    /// `state` is what `Lock` has found and overwritten. Not inlined, so that the way without waiting saves
    /// no registers.
    [[gnu::noinline]] void WaitAndTake(ThreadIdentity self, std::uint32_t state) noexcept
    {
        std::uint32_t desired = state; // Held, or with sleepers where there were some
        auto const tryTake = [&]
        {
            if (m_state.load(std::memory_order_relaxed) != Free)
                return false;
            std::uint32_t const found = m_state.exchange(desired, std::memory_order_acquire);
            desired = std::max(desired, found);
            return found == Free;
        };
        if (!SpinUntil(tryTake))
        {
            while (m_state.exchange(HeldWithSleepers, std::memory_order_acquire) != Free)
                FutexWait(m_state, HeldWithSleepers);
        }
        m_owner.store(self, std::memory_order_relaxed);
    }

    FutexWord m_state{Free};
    std::uint32_t m_nestedLocks = 0; // used by the owner only
    Atomic<ThreadIdentity> m_owner{nullptr};
};

TRecursiveMutex::TRecursiveMutex(unsigned int) : m_implementation(new Implementation) {}

TRecursiveMutex::~TRecursiveMutex()
{
    delete m_implementation;
}

void TRecursiveMutex::Lock()
{
    m_implementation->Lock();
}

bool TRecursiveMutex::TryLock()
{
    return m_implementation->TryLock();
}

void TRecursiveMutex::Unlock()
{
    m_implementation->Unlock();
}

void TRecursiveMutex::LockRead()
{
    m_implementation->Lock();
}

void TRecursiveMutex::UnlockRead()
{
    m_implementation->Unlock();
}
