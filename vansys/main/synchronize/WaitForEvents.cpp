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
#include <typeinfo>

using namespace vansys::detail;
using std::chrono::milliseconds;

namespace
{

constexpr std::size_t None = static_cast<std::size_t>(-1);

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
        m_done.Wait(EventCore::CheckedMilliseconds(timeout));
        // No callback runs on another thread after this, so an event either has counted by now, perhaps after
        // the time was over, or its signal has not been taken.
        RemoveCallbacks();
        return m_done.Wait(0) ? m_decider : None;
    }

private:
    struct Slot
    {
        IEvent const *event = nullptr;
        Atomic<bool> hasCounted{false};
    };

    void AddCallbacks()
    {
        for (std::size_t i = 0; i < m_slots.size(); ++i)
        {
            IEvent const *const event = m_slots[i].event;
            if (!event)
                continue;
            // In this order: a signal between the two must reach one of them. Both may see the same signal.
            event->AddOnSignalCallback(&m_slots[i], [this, i] { Count(i); });
            m_withCallback = i + 1;
            if (event->IsSet())
                Count(i);
        }
    }

    void RemoveCallbacks() noexcept
    {
        for (std::size_t i = 0; i < m_withCallback; ++i)
        {
            if (m_slots[i].event)
                m_slots[i].event->RemoveOnSignalCallback(&m_slots[i]);
        }
        m_withCallback = 0;
    }

    /// Called on any thread.
    void Count(std::size_t i)
    {
        Slot &slot = m_slots[i];
        if (slot.hasCounted.exchange(true))
            return;
        // The signal of an auto-reset event counts for whoever takes it. When the look at the event has
        // brought us here, it has been taken by that look, and the event does not count: callers rely on it.
        if (dynamic_cast<TAutoResetEvent const *>(slot.event) && !slot.event->Wait(milliseconds(0)))
            return;
        if (m_missing.fetch_sub(1) == 1)
        {
            m_decider = i;
            EventCore::SetForRemover(m_done, &slot);
        }
    }

    std::vector<Slot> m_slots; // their addresses are the keys of the callbacks
    std::size_t m_withCallback = 0;
    Atomic<std::size_t> m_missing; // wraps when more events count than are needed
    std::size_t m_decider = None;  // written before m_done is set
    EventBackEnd m_done{EventReset::Manual};
};

/// Whether the event is one of the library's own that a look does not change. Compares addresses: that of
/// another class, even of one derived from these, is just not recognised.
bool CanBeLookedAt(IEvent const &event)
{
    std::type_info const *const type = &typeid(event);
    return type == &typeid(TEvent) || type == &typeid(TCancelEvent) || type == &typeid(TCountdownEvent);
}

/// The position of the event that decides the call if it is decided at its very start, else `None`. Leaves no
/// trace, and so spares the callbacks. Nobody can tell: the result is one that the callbacks may give too.
std::size_t LookForDecision(std::vector<IEvent *> const &events, std::size_t needed)
{
    if (!std::all_of(events.begin(), events.end(), [](IEvent const *event) { return CanBeLookedAt(*event); }))
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
