#include "main/synchronize/ReadWriteLockBackEnd_linux.h"

#include "main/platform/SpinWait.h"

namespace vansys::detail
{

void ReadWriteLockBackEnd::WaitAndTake() noexcept
{
    Claim();
    WaitForReaders();
}

/// Sleeps while the word has the bit `cause`, or for no reason. `mark` says in the word that somebody
/// does.
void ReadWriteLockBackEnd::SleepWhile(std::uint32_t cause, std::uint32_t mark,
                                      FutexWord const &woken) noexcept
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

void ReadWriteLockBackEnd::WaitAndAddReader()
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
void ReadWriteLockBackEnd::Claim() noexcept
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

void ReadWriteLockBackEnd::WaitForReaders() noexcept
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

void ReadWriteLockBackEnd::WakeReadersAndWriter(std::uint32_t marks) noexcept
{
    if (marks & ReadersSleep)
    {
        m_readersWoken.fetch_add(1, std::memory_order_release);
        FutexWakeAll(m_readersWoken);
    }
    if (marks & WritersSleep)
    {
        m_writersWoken.fetch_add(1, std::memory_order_release);
        FutexWakeOne(m_writersWoken);
    }
}

void ReadWriteLockBackEnd::WakeClaimant() noexcept
{
    m_claimantWoken.fetch_add(1, std::memory_order_release);
    FutexWakeOne(m_claimantWoken);
}

} // namespace vansys::detail
