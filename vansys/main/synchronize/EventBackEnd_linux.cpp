#include "main/synchronize/EventBackEnd.h"

#include "main/platform/Clock.h"
#include "main/platform/Futex.h"
#include "main/platform/SpinWait.h"

#include <chrono>
#include <mutex>
#include <optional>

// Operations without a stated order are sequentially consistent, as the header promises.

namespace vansys::detail
{

namespace
{

using Deadline = std::optional<Clock::TimePoint>;

Deadline DeadlineAfter(std::uint32_t milliseconds)
{
    if (milliseconds == EventBackEnd::Infinite)
        return {};
    return Clock::Now() + std::chrono::milliseconds(milliseconds);
}

/// Returns false when the deadline has passed.
bool Sleep(FutexWord const &word, std::uint32_t expected, Deadline const &deadline)
{
    if (deadline)
        return FutexWaitUntil(word, expected, *deadline);
    FutexWait(word, expected);
    return true;
}

/// Held for a few steps at a time, and only where threads wait. A thread that finds it taken sleeps: were it
/// to spin, it could keep a holder of lower priority from going on.
class QueueLock
{
public:
    void lock()
    {
        std::uint32_t expected = Free;
        if (m_word.compare_exchange_strong(expected, Held))
            return;
        while (m_word.exchange(HeldWithSleepers) != Free)
            FutexWait(m_word, HeldWithSleepers);
    }

    void unlock()
    {
        if (m_word.exchange(Free) == HeldWithSleepers)
            FutexWakeOne(m_word);
    }

private:
    static constexpr std::uint32_t Free = 0;
    static constexpr std::uint32_t Held = 1;
    static constexpr std::uint32_t HeldWithSleepers = 2;

    FutexWord m_word{Free};
};

/// A thread that waits; lies on its stack, and is gone as soon as it may see that it is released.
struct Waiter
{
    FutexWord isReleased{0};
    bool isQueued = false; // like the links, guarded by the lock of the queue
    Waiter *previous = nullptr;
    Waiter *next = nullptr;
};

} // namespace

/// While nobody waits, an event is one word. Threads that wait are in a queue, and a release names the one
/// that it is for: so nobody who comes later can take it. While the queue has threads, the word says so and
/// nothing else, and only a holder of the lock changes it.
class EventBackEnd::State
{
public:
    explicit State(EventReset reset) : m_reset(reset) {}

    void Set()
    {
        std::uint32_t word = m_word.load();
        for (;;)
        {
            if (word != HasWaiters)
            {
                if (m_word.compare_exchange_weak(word, IsSet))
                    return;
            }
            else if (Waiter *const released = Dequeue())
            {
                Release(released);
                return;
            }
            else
                word = m_word.load();
        }
    }

    void Reset()
    {
        std::uint32_t expected = IsSet;
        m_word.compare_exchange_strong(expected, NotSet);
    }

    bool Wait(std::uint32_t milliseconds)
    {
        if (Take())
            return true;
        if (milliseconds == 0)
            return false;

        Deadline deadline = DeadlineAfter(milliseconds);
        Waiter self;
        if (SpinWhileItPays([this] { return Take(); }) || !Enqueue(self))
            return true;
        while (self.isReleased.load() == 0)
        {
            if (Sleep(self.isReleased, 0, deadline))
                continue;
            if (Leave(self))
                return false;
            deadline.reset(); // the release is on its way
        }
        return true;
    }

private:
    static constexpr std::uint32_t NotSet = 0;
    static constexpr std::uint32_t IsSet = 1;
    static constexpr std::uint32_t HasWaiters = 2;

    bool Take()
    {
        std::uint32_t word = m_word.load();
        return word == IsSet &&
               (m_reset == EventReset::Manual || m_word.compare_exchange_strong(word, NotSet));
    }

    /// Takes the signal instead, and returns false, if there is one now.
    bool Enqueue(Waiter &self)
    {
        std::uint32_t const afterTaking = m_reset == EventReset::Manual ? IsSet : NotSet;
        std::lock_guard const lock(m_lock);
        std::uint32_t word = m_word.load();
        while (!m_word.compare_exchange_weak(word, word == IsSet ? afterTaking : HasWaiters))
        {
        }
        if (word == IsSet)
            return false;
        self.isQueued = true;
        self.previous = m_last;
        (m_last ? m_last->next : m_first) = &self;
        m_last = &self;
        return true;
    }

    /// Takes those out of the queue whom a signal releases: a list, linked by `next`. Null when the queue has
    /// become empty.
    Waiter *Dequeue()
    {
        std::lock_guard const lock(m_lock);
        if (m_word.load() != HasWaiters)
            return nullptr;
        Waiter *const released = m_first;
        if (m_reset == EventReset::Auto)
        {
            Unlink(*released);
            released->next = nullptr;
            if (!m_first)
                m_word.store(NotSet);
            return released;
        }
        for (Waiter *waiter = released; waiter; waiter = waiter->next)
            waiter->isQueued = false;
        m_first = m_last = nullptr;
        m_word.store(IsSet);
        return released;
    }

    /// Outside of the lock, so that those who are woken do not run into it.
    static void Release(Waiter *waiter)
    {
        while (waiter)
        {
            Waiter *const next = waiter->next;
            FutexWord &isReleased = waiter->isReleased;
            isReleased.store(1);
            FutexWakeOne(isReleased); // by its address only
            waiter = next;
        }
    }

    /// Returns false when the thread is in the queue no more, and so is being released.
    bool Leave(Waiter &self)
    {
        std::lock_guard const lock(m_lock);
        if (!self.isQueued)
            return false;
        Unlink(self);
        if (!m_first)
            m_word.store(NotSet);
        return true;
    }

    void Unlink(Waiter &waiter)
    {
        waiter.isQueued = false;
        (waiter.previous ? waiter.previous->next : m_first) = waiter.next;
        (waiter.next ? waiter.next->previous : m_last) = waiter.previous;
    }

    FutexWord m_word{NotSet};
    QueueLock m_lock; // guards the queue
    Waiter *m_first = nullptr;
    Waiter *m_last = nullptr;
    EventReset const m_reset;
};

EventBackEnd::EventBackEnd(EventReset reset) noexcept : m_state(reset) {}

EventBackEnd::~EventBackEnd() = default;

void EventBackEnd::Set() noexcept
{
    m_state->Set();
}

void EventBackEnd::Reset() noexcept
{
    m_state->Reset();
}

bool EventBackEnd::Wait(std::uint32_t milliseconds) noexcept
{
    return m_state->Wait(milliseconds);
}

} // namespace vansys::detail
