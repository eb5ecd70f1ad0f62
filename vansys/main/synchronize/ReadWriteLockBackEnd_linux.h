/// @file
/// ReadWriteLockBackEnd of Linux: a word for readers and writers, and one for each kind of sleepers.
#pragma once

#include "main/platform/Atomic.h"
#include "main/platform/Futex.h"
#include "main/platform/ThreadIdentity.h"
#include "main/synchronize/LockLimits.h"

#include <cstdint>

namespace vansys::detail
{

/// One word counts the readers and says what the writers do. Where nobody has to wait, each operation is one
/// change of this word.
///
/// A writer first claims the lock, which keeps other writers out, and then waits until the word has no
/// readers, which it makes exclusive in the same step. Readers are kept out only by an exclusive word: they
/// pass by a writer that waits.
///
/// Nobody sleeps on the word itself, which changes with every reader. Each kind of sleeper has a word of its
/// own that counts the times that it was woken. Who is going to sleep reads that word first, then finds the
/// state to be one to wait for and marked so that it will be woken, and then sleeps unless the count has
/// moved. Who changes the state moves the count afterwards if it finds the mark. Hence either the sleeper
/// sees the new state, or the count moves after the sleeper has read it.
///
/// The ways without waiting are here to be inlined into what the library exports.
class ReadWriteLockBackEnd
{
public:
    void Lock()
    {
        ThreadIdentity const self = CurrentThreadIdentity();
        if (IsOwnedBy(self))
        {
            if (m_writerCount == MaxLockCount)
                ReportTooManyWriters();
            else
                ++m_writerCount;
            return;
        }
        if (!TryTake())
            WaitAndTake();
        SetOwner(self);
    }

    bool TryLock() noexcept
    {
        ThreadIdentity const self = CurrentThreadIdentity();
        if (IsOwnedBy(self))
        {
            if (HasReaders(m_state.load(std::memory_order_relaxed)) || m_writerCount == MaxLockCount)
                return false;
            ++m_writerCount;
            return true;
        }
        if (!TryTake())
            return false;
        SetOwner(self);
        return true;
    }

    void Unlock() noexcept
    {
        if (--m_writerCount != 0)
            return;
        m_owner.store(nullptr, std::memory_order_relaxed);
        // What is left are read locks that the writer took inside its own.
        std::uint32_t const state = m_state.fetch_and(ReaderMask, std::memory_order_release);
        if (state & (ReadersSleep | WritersSleep))
            WakeReadersAndWriter(state);
    }

    void LockRead()
    {
        std::uint32_t state = m_state.load(std::memory_order_relaxed);
        while (!(state & Exclusive) && (state & ReaderMask) != MaxLockCount)
        {
            if (TryAddReader(state))
                return;
        }
        WaitAndAddReader();
    }

    bool TryLockRead() noexcept
    {
        std::uint32_t state = m_state.load(std::memory_order_relaxed);
        while (MayRead(state) && (state & ReaderMask) != MaxLockCount)
        {
            if (TryAddReader(state))
                return true;
        }
        return false;
    }

    void UnlockRead() noexcept
    {
        std::uint32_t const state = m_state.fetch_sub(1, std::memory_order_release);
        if ((state & (ReaderMask | ClaimantSleeps)) == (1 | ClaimantSleeps))
            WakeClaimant();
    }

private:
    enum : std::uint32_t
    {
        ReaderMask = 0xFFFF,
        Claimed = 0x10000,        ///< a writer holds the lock or is the next to do so
        Exclusive = 0x20000,      ///< a writer holds the lock
        ReadersSleep = 0x40000,   ///< readers sleep until the word is not exclusive
        WritersSleep = 0x80000,   ///< writers sleep until the word is not claimed
        ClaimantSleeps = 0x100000 ///< the writer that has claimed the lock sleeps until there are no readers
    };

    static bool HasReaders(std::uint32_t state) noexcept { return (state & ReaderMask) != 0; }

    /// Relaxed: a thread finds its own identity only where it has stored it itself.
    bool IsOwnedBy(ThreadIdentity self) const noexcept
    {
        return m_owner.load(std::memory_order_relaxed) == self;
    }

    void SetOwner(ThreadIdentity self) noexcept
    {
        m_owner.store(self, std::memory_order_relaxed);
        m_writerCount = 1;
    }

    bool MayRead(std::uint32_t state) const noexcept
    {
        return !(state & Exclusive) || IsOwnedBy(CurrentThreadIdentity());
    }

    bool TryTake() noexcept
    {
        std::uint32_t state = 0;
        return TryChange(state, Claimed | Exclusive);
    }

    bool TryAddReader(std::uint32_t &state) noexcept { return TryChange(state, state + 1); }

    /// Updates `state` when the word has a different value.
    bool TryChange(std::uint32_t &state, std::uint32_t desired) noexcept
    {
        return m_state.compare_exchange_strong(state, desired, std::memory_order_acquire,
                                               std::memory_order_relaxed);
    }

    void WaitAndTake() noexcept;
    void Claim() noexcept;
    void WaitForReaders() noexcept;
    void WaitAndAddReader();
    void SleepWhile(std::uint32_t cause, std::uint32_t mark, FutexWord const &woken) noexcept;
    void WakeReadersAndWriter(std::uint32_t marks) noexcept;
    void WakeClaimant() noexcept;

    FutexWord m_state{0};
    LockCount m_writerCount = 0; // locks of the owner; used by the owner only
    Atomic<ThreadIdentity> m_owner{nullptr};
    FutexWord m_readersWoken{0};
    FutexWord m_writersWoken{0};
    FutexWord m_claimantWoken{0};
};

} // namespace vansys::detail
