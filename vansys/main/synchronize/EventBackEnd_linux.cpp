#include "main/synchronize/EventBackEnd.h"

#include "main/platform/Clock.h"
#include "main/platform/Futex.h"
#include "main/platform/SpinWait.h"

#include <chrono>
#include <optional>

// Operations without a stated order are sequentially consistent, as the header promises and as counting the
// waiting threads needs: a thread that is about to sleep counts itself and then looks at the state; `Set`
// changes the state and then looks at the count. One of them sees the other.

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

/// `state` counts the changes between set and not set, so it is odd while the event is set. A waiting thread
/// is released by any change of it: the event has been set since, even when it is not set any more.
/// `count` is the number of threads that sleep or are about to.
struct ManualReset
{
    EventWords &words;

    /// Returns the word on which threads sleep, or null when none does.
    FutexWord const *Set()
    {
        words.state.fetch_or(1);
        return words.count.load() != 0 ? &words.state : nullptr;
    }

    void Reset()
    {
        std::uint32_t state = words.state.load();
        while (state % 2 != 0 && !words.state.compare_exchange_weak(state, state + 1))
        {
        }
    }

    bool Wait(std::uint32_t milliseconds)
    {
        std::uint32_t const before = words.state.load();
        if (before % 2 != 0)
            return true;
        if (milliseconds == 0)
            return false;

        Deadline const deadline = DeadlineAfter(milliseconds);
        auto const hasChanged = [&] { return words.state.load() != before; };
        if (SpinWhileItPays(hasChanged))
            return true;
        words.count.fetch_add(1);
        while (!hasChanged() && Sleep(words.state, before, deadline))
        {
        }
        words.count.fetch_sub(1);
        return hasChanged();
    }
};

/// `state` is 1 while the event is set, else twice the number of threads that wait and have not been
/// released. `count` is the number of threads that have been released and do not know it yet; any waiting
/// thread may take a release for its own.
struct AutoReset
{
    EventWords &words;

    static constexpr std::uint32_t IsSet = 1;
    static constexpr std::uint32_t OneWaiting = 2;

    void Set()
    {
        std::uint32_t state = words.state.load();
        while (!words.state.compare_exchange_weak(state, state < OneWaiting ? IsSet : state - OneWaiting))
        {
        }
        if (state >= OneWaiting)
        {
            words.count.fetch_add(1);
            FutexWakeOne(words.count);
        }
    }

    void Reset() { Take(); }

    bool Wait(std::uint32_t milliseconds)
    {
        if (Take())
            return true;
        if (milliseconds == 0)
            return false;

        Deadline const deadline = DeadlineAfter(milliseconds);
        if (SpinWhileItPays([this] { return Take(); }) || TakeOrQueue())
            return true;
        while (!TakeRelease())
        {
            if (!Sleep(words.count, 0, deadline) && Leave())
                return false;
        }
        return true;
    }

    bool Take()
    {
        std::uint32_t expected = IsSet;
        return words.state.load() == IsSet && words.state.compare_exchange_strong(expected, 0);
    }

    bool TakeOrQueue()
    {
        std::uint32_t state = words.state.load();
        while (!words.state.compare_exchange_weak(state, state == IsSet ? 0 : state + OneWaiting))
        {
        }
        return state == IsSet;
    }

    bool TakeRelease()
    {
        std::uint32_t releases = words.count.load();
        while (releases != 0 && !words.count.compare_exchange_weak(releases, releases - 1))
        {
        }
        return releases != 0;
    }

    /// Undoes the queueing. Fails while all waiting threads have been released: then a release for this one
    /// is there, or is being written at this moment. A thread that comes later may take it first, and wait in
    /// its place; so the next attempt may succeed.
    bool Leave()
    {
        std::uint32_t state = words.state.load();
        while (state >= OneWaiting && !words.state.compare_exchange_weak(state, state - OneWaiting))
        {
        }
        return state >= OneWaiting;
    }
};

} // namespace

EventBackEnd::EventBackEnd(EventReset reset) noexcept : m_reset(reset), m_words() {}

EventBackEnd::~EventBackEnd() {}

void EventBackEnd::Set() noexcept
{
    if (m_reset == EventReset::Manual)
        Wake(SetWithoutWaking());
    else
        AutoReset{m_words}.Set();
}

void const *EventBackEnd::SetWithoutWaking() noexcept
{
    return ManualReset{m_words}.Set();
}

void EventBackEnd::Wake(void const *sleepers) noexcept
{
    if (sleepers)
        FutexWakeAll(*static_cast<FutexWord const *>(sleepers));
}

void EventBackEnd::Reset() noexcept
{
    if (m_reset == EventReset::Manual)
        ManualReset{m_words}.Reset();
    else
        AutoReset{m_words}.Reset();
}

bool EventBackEnd::Wait(std::uint32_t milliseconds) noexcept
{
    if (m_reset == EventReset::Manual)
        return ManualReset{m_words}.Wait(milliseconds);
    return AutoReset{m_words}.Wait(milliseconds);
}

} // namespace vansys::detail
