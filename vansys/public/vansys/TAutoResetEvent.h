/// @file
/// TAutoResetEvent: an event that each wait takes for itself.
#pragma once

#include "vansys/IEvent.h"

namespace vansys::detail
{
class EventCore;
}

/// An auto-reset event: a signal lets one wait go on. `Signal` releases one of the threads that wait, and the
/// event is not set then; when none waits, the event stays set until one `Wait` or `IsSet` returns true,
/// which takes the signal. A thread that has been released goes on: neither `Reset` nor a thread that
/// comes to wait later takes that away from it.
///
/// For handing on a turn or a piece of work. It does not count: a signal of an event that is set already
/// changes nothing. Where each signal must be found again, use `TSemaphore`. Which of several waiting threads
/// goes on is not defined.
///
/// The contract is that of `IEvent`. Callbacks run at every signal, also when a waiting thread has taken it.
/// `WaitForAll` and `WaitForAny` take signals by rules of their own: see WaitForEvents.h.
class VANSYS_API TAutoResetEvent : public IEvent
{
public:
    /// Not set. Throws `std::bad_alloc`.
    TAutoResetEvent();

    TAutoResetEvent(TAutoResetEvent const &) = delete;
    TAutoResetEvent &operator=(TAutoResetEvent const &) = delete;

    ~TAutoResetEvent() override;

    void Signal() const override;
    bool IsSet() const override;
    bool Wait(std::chrono::milliseconds timeout) const override;
    bool Wait() const override;
    void Reset() const override;
    void AddOnSignalCallback(void *key, std::function<void()> callback) const override;
    void RemoveOnSignalCallback(void *key) const override;

private:
    vansys::detail::EventCore *m_core; // owned, never null
};
