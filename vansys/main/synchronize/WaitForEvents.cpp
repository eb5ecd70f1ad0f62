#include "vansys/WaitForEvents.h"

#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/ThrowLogicException.h"

#include "main/platform/Atomic.h"
#include "main/synchronize/EventCore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <typeinfo>

using namespace vansys::detail;
using std::chrono::milliseconds;

namespace
{

constexpr std::size_t None = static_cast<std::size_t>(-1);

/// Whether the event is of a class that is known to do no more and no less than the library's events do. A
/// class derived from one of them may do anything.
bool IsExactly(IEvent const &event, std::initializer_list<std::type_info const *> classes)
{
    std::type_info const &type = typeid(event);
    return std::any_of(classes.begin(), classes.end(),
                       [&](std::type_info const *one) { return type == *one; });
}

/// Whether a look at the event takes nothing from it.
bool StaysSet(IEvent const &event)
{
    return IsExactly(event, {&typeid(TEvent), &typeid(TCancelEvent), &typeid(TCountdownEvent)});
}

/// Counts the events that have been signalled, by a callback on each of them.
class SignalCounter
{
public:
    SignalCounter(std::vector<IEvent *> const &events, std::size_t needed)
        : m_slots(events.size()),
          m_missing(needed)
    {
        for (std::size_t i = 0; i < events.size(); ++i)
            m_slots[i].event = events[i];
    }

    SignalCounter(SignalCounter const &) = delete;
    SignalCounter &operator=(SignalCounter const &) = delete;

    ~SignalCounter() { RemoveCallbacks(); }

    /// Waits until enough events have counted. Returns the position of the one that decided it, or `None`.
    std::size_t Wait(milliseconds timeout)
    {
        AddCallbacks();
        std::uint32_t const limit = EventCore::CheckedMilliseconds(timeout);
        // A callback may have decided on this thread, in the middle of a walk that ends only after this call.
        if (m_decider.load() == None)
            m_done->Wait(limit);
        // No callback runs on another thread after this, so an event either has counted by now, perhaps after
        // the time was over, or its signal has not been taken.
        RemoveCallbacks();
        return m_decider.load();
    }

private:
    struct Slot
    {
        IEvent const *event = nullptr;
        Atomic<bool> hasCounted{false};
    };

    class Callback;

    void AddCallbacks();

    void RemoveCallbacks() noexcept
    {
        for (std::size_t i = 0; i < m_withCallback; ++i)
        {
            if (m_slots[i].event)
                m_slots[i].event->RemoveOnSignalCallback(&m_slots[i]);
        }
        m_withCallback = 0;
    }

    /// Returns whether the event decides the call. Called on any thread.
    bool Count(std::size_t i)
    {
        Slot &slot = m_slots[i];
        if (slot.hasCounted.exchange(true))
            return false;
        // The signal of an auto-reset event counts for whoever takes it. When the look at the event has
        // brought us here, it has been taken by that look, and the event does not count: callers rely on it.
        if (dynamic_cast<TAutoResetEvent const *>(slot.event) && !slot.event->Wait(milliseconds(0)))
            return false;
        if (m_missing.fetch_sub(1) != 1)
            return false;
        m_decider.store(i);
        return true;
    }

    std::vector<Slot> m_slots; // their addresses are the keys of the callbacks
    std::size_t m_withCallback = 0;
    Atomic<std::size_t> m_missing; // wraps when more events count than are needed
    Atomic<std::size_t> m_decider{None};
    // Set, after m_decider, to wake this thread. Shared with the callback that does so, which may come late.
    std::shared_ptr<EventBackEnd> const m_done = std::make_shared<EventBackEnd>(EventReset::Manual);
};

/// What each event calls. The thread that waits goes on to remove the callbacks, for which it needs the lock
/// under which this one runs. To wake it only when that lock has been released, the callback that decides the
/// call removes itself from the event, and so is destroyed after the release. An event of a host's own may
/// call and keep the callback in ways of its own; there, the thread is woken at once.
class SignalCounter::Callback
{
public:
    Callback(SignalCounter &counter, std::size_t i) : m_counter(counter), m_position(i) {}

    ~Callback()
    {
        if (m_toSet)
            m_toSet->Set();
    }

    // A function object has to have one.
    Callback(Callback const &other) : m_counter(other.m_counter), m_position(other.m_position) {}
    Callback &operator=(Callback const &) = delete;

    void operator()()
    {
        if (!m_counter.Count(m_position))
            return;
        Slot &slot = m_counter.m_slots[m_position];
        if (StaysSet(*slot.event) || IsExactly(*slot.event, {&typeid(TAutoResetEvent)}))
        {
            m_toSet = m_counter.m_done;
            slot.event->RemoveOnSignalCallback(&slot);
        }
        else
            m_counter.m_done->Set();
    }

private:
    SignalCounter &m_counter;
    std::size_t const m_position;
    std::shared_ptr<EventBackEnd> m_toSet;
};

void SignalCounter::AddCallbacks()
{
    for (std::size_t i = 0; i < m_slots.size(); ++i)
    {
        IEvent const *const event = m_slots[i].event;
        if (!event)
            continue;
        // In this order: a signal between the two must reach one of them. Both may see the same signal.
        event->AddOnSignalCallback(&m_slots[i], Callback(*this, i));
        m_withCallback = i + 1;
        if (event->IsSet())
            Count(i);
    }
}

/// The position of the event that decides the call if it is decided at its very start, else `None`. Leaves no
/// trace, and so spares the callbacks. Nobody can tell: the result is one that the callbacks may give too.
std::size_t LookForDecision(std::vector<IEvent *> const &events, std::size_t needed)
{
    if (!std::all_of(events.begin(), events.end(), [](IEvent const *event) { return StaysSet(*event); }))
        return None;
    for (std::size_t i = 0; i < events.size(); ++i)
    {
        if (events[i]->IsSet() && --needed == 0)
            return i;
    }
    return None;
}

/// Returns the position of the event that decided the call, or `None`.
std::size_t WaitForSome(std::vector<IEvent *> const &events, std::size_t needed, milliseconds timeout)
{
    bool hasNull = false;
    for (IEvent const *event : events)
    {
        if (event)
            continue;
        ThrowLogicException("vansys/main/synchronize/WaitForEvents", 143, "event != nullptr");
        hasNull = true;
    }
    if (!hasNull && timeout.count() >= 0)
    {
        std::size_t const decider = LookForDecision(events, needed);
        if (decider != None)
            return decider;
    }
    return SignalCounter(events, needed).Wait(timeout);
}

} // namespace

bool WaitForAll(std::vector<IEvent *> const &events, milliseconds timeout)
{
    return WaitForSome(events, events.size(), timeout) != None;
}

bool WaitForAny(std::vector<IEvent *> const &events, milliseconds timeout)
{
    return WaitForSome(events, 1, timeout) != None;
}

bool WaitForAny(std::vector<IEvent *> const &events, milliseconds timeout, unsigned int &index)
{
    std::size_t const decider = WaitForSome(events, 1, timeout);
    if (decider == None)
        return false;
    index = static_cast<unsigned int>(decider);
    return true;
}
