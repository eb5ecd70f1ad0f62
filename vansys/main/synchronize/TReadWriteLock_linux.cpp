#include "vansys/TReadWriteLock.h"

#include "main/platform/Atomic.h"
#include "main/platform/Futex.h"
#include "main/platform/SpinWait.h"
#include "main/platform/ThreadIdentity.h"
#include "main/synchronize/LockLimits.h"

using namespace vansys::detail;

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
class TReadWriteLock::Implementation
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
        {
            Claim();
            WaitForReaders();
        }
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
        if (state & ReadersSleep)
        {
            m_readersWoken.fetch_add(1, std::memory_order_release);
            FutexWakeAll(m_readersWoken);
        }
        if (state & WritersSleep)
        {
            m_writersWoken.fetch_add(1, std::memory_order_release);
            FutexWakeOne(m_writersWoken);
        }
    }

    void LockRead()
    {
        std::uint32_t state = m_state.load(std::memory_order_relaxed);
        while (!(state & Exclusive) && (state & ReaderMask) != MaxLockCount)
        {
            if (TryAddReader(state))
                return;
        }
        LockReadSlowly();
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
        {
            m_claimantWoken.fetch_add(1, std::memory_order_release);
            FutexWakeOne(m_claimantWoken);
        }
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

    /// Sleeps while the word has the bit `cause`, or for no reason. `mark` says in the word that somebody
    /// does.
    void SleepWhile(std::uint32_t cause, std::uint32_t mark, FutexWord const &woken) noexcept
    {
        std::uint32_t const before = woken.load(std::memory_order_acquire);
        std::uint32_t state = m_state.load(std::memory_order_relaxed);
        while (state & cause)
        {
            if ((state & mark) || TryChange(state, state | mark))
            {
                FutexWait(woken, before);
                return;
            }
        }
    }

    /// Not inlined, so that the way without waiting saves no registers.
    [[gnu::noinline]] void LockReadSlowly()
    {
        auto const mayRead = [this] { return MayRead(m_state.load(std::memory_order_relaxed)); };
        for (;;)
        {
            std::uint32_t state = m_state.load(std::memory_order_relaxed);
            if (!MayRead(state))
            {
                if (!SpinUntil(mayRead))
                    SleepWhile(Exclusive, ReadersSleep, m_readersWoken);
            }
            else if ((state & ReaderMask) == MaxLockCount)
            {
                ReportTooManyReaders();
                return;
            }
            else if (TryAddReader(state))
                return;
        }
    }

    /// Like a mutex that knows only whether it has sleepers: a writer that has slept claims the lock as one
    /// for which others sleep, as it cannot know whether it was the last of them.
    void Claim() noexcept
    {
        std::uint32_t claim = Claimed;
        auto const isUnclaimed = [this] { return !(m_state.load(std::memory_order_relaxed) & Claimed); };
        for (;;)
        {
            std::uint32_t state = m_state.load(std::memory_order_relaxed);
            if (state & Claimed)
            {
                if (!SpinUntil(isUnclaimed))
                {
                    SleepWhile(Claimed, WritersSleep, m_writersWoken);
                    claim = Claimed | WritersSleep;
                }
            }
            else if (TryChange(state, state | claim))
                return;
        }
    }

    void WaitForReaders() noexcept
    {
        auto const isEmpty = [this] { return !HasReaders(m_state.load(std::memory_order_relaxed)); };
        for (;;)
        {
            std::uint32_t state = m_state.load(std::memory_order_relaxed);
            if (HasReaders(state))
            {
                if (!SpinUntil(isEmpty))
                    SleepWhile(ReaderMask, ClaimantSleeps, m_claimantWoken);
            }
            else if (TryChange(state, (state & ~ClaimantSleeps) | Exclusive))
                return;
        }
    }

    FutexWord m_state{0};
    LockCount m_writerCount = 0; // locks of the owner; used by the owner only
    Atomic<ThreadIdentity> m_owner{nullptr};
    FutexWord m_readersWoken{0};
    FutexWord m_writersWoken{0};
    FutexWord m_claimantWoken{0};
};

TReadWriteLock::TReadWriteLock(unsigned int) : m_implementation(new Implementation) {}

TReadWriteLock::~TReadWriteLock()
{
    delete m_implementation;
}

void TReadWriteLock::Lock()
{
    m_implementation->Lock();
}

void TReadWriteLock::Unlock()
{
    m_implementation->Unlock();
}

void TReadWriteLock::LockRead()
{
    m_implementation->LockRead();
}

void TReadWriteLock::UnlockRead()
{
    m_implementation->UnlockRead();
}

bool TReadWriteLock::try_lock()
{
    return m_implementation->TryLock();
}

bool TReadWriteLock::try_lock_shared()
{
    return m_implementation->TryLockRead();
}
