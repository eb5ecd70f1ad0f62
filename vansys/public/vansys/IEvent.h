/// @file
/// IEvent: the interface of all events, and the contract that they share.
#pragma once

#include "vansys/Export.h"

#include <chrono>
#include <functional>

/// By an event, one thread tells others that something has happened: it signals the event, and whoever waits
/// for it goes on.
///
/// | class             | what a signal does                                                              |
/// |-------------------|---------------------------------------------------------------------------------|
/// | `TEvent`          | sets the event until `Reset`; every wait goes on                                |
/// | `TAutoResetEvent` | lets one wait go on, now or later                                               |
/// | `TCountdownEvent` | counts down, and sets the event at 0                                            |
/// | `TCancelEvent`    | sets the event and those below it; is shared through a reference count          |
///
/// `WaitForAll` and `WaitForAny` (WaitForEvents.h) wait for several events at once.
///
/// All operations are `const`: whoever may see an event may signal it and wait for it.
///
/// **Threads.** Every operation may be called on any thread at any time.
///
/// **Memory order.** What a thread did before `Signal` is seen by a thread whose `Wait` or `IsSet` has
/// returned true after that `Signal` set the event, and by the callbacks that the `Signal` runs. That holds
/// for the second signal of an event that was set already, too. A result of false lets nothing be concluded.
///
/// **Lifetime.** Whoever destroys an event sees to it that no other thread is in a call on it, or will be. To
/// have seen the event set is not enough: `Wait` and `IsSet` return true while the `Signal` that set the
/// event is still at work on it. Keep the event alive until `Signal` has returned: join the signalling
/// thread, or let both sides hold a reference. A destroyed event signals nothing and releases nobody.
///
/// **Callbacks.** The functions given to `AddOnSignalCallback` run at every `Signal`, until they are removed:
/// - on the signalling thread, after the event has been set, in ascending order of the addresses of their
///   keys;
/// - with the event's callback lock held, which is recursive. So the callbacks of one event never run on two
///   threads at once, and those of an auto-reset event may find the event taken by another thread already;
/// - free to signal, reset, and look at the same event, and to add, replace and remove callbacks of it, their
///   own included. An entry that was removed or replaced before its turn does not run as it was; one that was
///   added behind the current key runs in the same walk, one before it at the next signal. What is removed or
///   replaced stays alive until the walk is over and the lock released, as it may be what is running;
/// - an exception that leaves a callback ends the walk: the callbacks after it do not run, the lock is
///   released, and the exception leaves `Signal`. The event stays set.
///
/// **Deadlock.** A thread that adds or removes a callback waits while callbacks of the event run on another
/// thread, and so does a second signal. A callback must therefore be short, and must not wait for a thread
/// that may signal the event or change its callbacks; nor take a lock that somebody holds during those calls.
///
/// **Implementing it.** A class of a host's own may be given to `WaitForAll` and `WaitForAny` when it keeps
/// to the above, most of all to what `RemoveOnSignalCallback` promises.
class VANSYS_API IEvent
{
public:
    // An interface has no state to copy. The events themselves cannot be copied.
    IEvent() noexcept = default;
    IEvent(IEvent const &other) noexcept = default;
    IEvent &operator=(IEvent const &other) noexcept = default;

    virtual ~IEvent();

    /// Sets the event, lets the threads that wait go on, then runs the callbacks.
    /// @throws std::bad_function_call when it comes to a callback that is an empty function, and whatever a
    /// callback throws.
    virtual void Signal() const = 0;

    /// Whether the event is set: a wait that does not wait. On an auto-reset event, a result of true has
    /// therefore taken the signal, and the event is not set any more.
    virtual bool IsSet() const = 0;

    /// Waits until the event is set, for the time given at most. Returns whether it was set in time. Zero
    /// only looks; 4294967295 ms (about 50 days) and more wait without limit. Time is that of a monotonic
    /// clock.
    ///
    /// A negative time is a failed assertion "timeout.count() >= 0". When the host's hook lets it pass, the
    /// wait goes on with the low 32 bits of the count as milliseconds; for -1 ms that is without limit.
    virtual bool Wait(std::chrono::milliseconds timeout) const = 0;

    /// Waits until the event is set, and returns true. (False when the operating system could not provide an
    /// event; then it returns at once.)
    virtual bool Wait() const = 0;

    /// Makes the event not set. Runs no callbacks, and does not hold back a thread that a signal has
    /// released: `Signal` and then `Reset` let every thread go on that was waiting.
    virtual void Reset() const = 0;

    /// Has `callback` called at every `Signal` from now on, not for one that has come before. There is one
    /// callback for each key: a second one replaces the first. The key is only an address, and nothing is
    /// read from it; take that of an object of your own.
    ///
    /// When the memory is not there (`std::bad_alloc`), the callbacks are as before. A function that was
    /// replaced is destroyed by the thread that replaces it, after the lock has been released: before this
    /// returns, or at the end of `Signal` when a callback of the event has called this. So what it owns may
    /// take locks of its own when it is destroyed, or come back to the event.
    virtual void AddOnSignalCallback(void *key, std::function<void()> callback) const = 0;

    /// Removes the callback of that key; a key without one is ignored.
    ///
    /// When it has returned, the callback is neither running nor will it be called: if it runs on another
    /// thread, this waits for its end. What it used may then be destroyed. Only where it is called by the
    /// callback itself (or from within it), the callback goes on after the return. The function is destroyed
    /// as one that was replaced. Never throws.
    virtual void RemoveOnSignalCallback(void *key) const = 0;
};
