/// @file
/// TCountdownEvent: an event that is set by the last of a number of signals.
#pragma once

#include "vansys/IEvent.h"

namespace vansys::detail
{
class CountingEvent;
}

/// A manual-reset event with a count. Each `Signal` takes one from the count; the one that brings it to 0
/// sets the event and runs the callbacks.
///
/// For waiting until a known number of pieces of work are done, each of which signals once.
///
/// Who waits must not leave the scope of the event, and so destroy it, as soon as `Wait` has returned: the
/// last `Signal` may still be at work on it. Join the threads that signal first, or let them share the event.
///
/// The count is unsigned and not guarded at 0: a further signal makes it 4294967295, and the event stays set.
/// Only `Reset` makes it usable again: it sets the count to its first value and the event to not set. An
/// event that starts at 0 is not set, and no `Signal` sets it (the first brings the count to 4294967295).
///
/// The contract is that of `IEvent`, with one addition: `Signal` and `Reset` hold a lock on the count, also
/// while `Signal` runs the callbacks. A callback may use the event, but must not wait for a thread that
/// signals or resets it.
class VANSYS_API TCountdownEvent : public IEvent
{
public:
    /// Throws `std::bad_alloc`.
    explicit TCountdownEvent(unsigned int count);

    TCountdownEvent(TCountdownEvent const &) = delete;
    TCountdownEvent &operator=(TCountdownEvent const &) = delete;

    ~TCountdownEvent() override;

    /// Counts down by one. When a callback throws, the signal has counted all the same.
    void Signal() const override;
    bool IsSet() const override;
    bool Wait(std::chrono::milliseconds timeout) const override;
    bool Wait() const override;

    /// Sets the count back to its first value and makes the event not set.
    void Reset() const override;

    /// The callback runs when the count comes to 0, not at every signal.
    void AddOnSignalCallback(void *key, std::function<void()> callback) const override;
    void RemoveOnSignalCallback(void *key) const override;

private:
    vansys::detail::CountingEvent *m_event; // owned, never null
};
