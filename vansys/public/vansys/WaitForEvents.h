/// @file
/// Waiting for several events at once.
///
/// A call adds a callback of its own to each event, in the order of the vector, and then looks whether the
/// event is set. It waits until enough events have counted, or the time is over, and removes the callbacks.
///
/// **What counts.** An event counts once in a call: when it is set as the call looks at it, or else at its
/// next signal. Resetting it afterwards does not undo that. The same event at two positions is two events,
/// which are always signalled together.
///
/// A call of `Signal` that is still at its callbacks counts in a call that begins meanwhile, even if the
/// event has been reset since. So whoever resets an event and waits for it again may find it signalled once
/// too often, never too rarely: look at what the event stands for, and wait again.
///
/// **Auto-reset events** have rules of their own, as each of their signals is for one wait only:
/// - A `TAutoResetEvent` that is set as the call looks at it does not count in this call, and its signal is
///   gone. So signal such an event only when somebody waits, or look at it with `IsSet` before the call.
/// - One that is signalled after that counts, and the call takes the signal; also when the call fails, or
///   when another event has decided it already. If another wait takes the signal first, the event does not
///   count in this call any more, however often it is signalled. Of two calls that wait for the same event at
///   the same time, one gets its signal, and the other goes on without this event: do not let several threads
///   wait for an auto-reset event in this way.
/// - At two positions, only one of them gets the signal, so that `WaitForAll` cannot succeed.
///
/// Where every signal has to be found again, let one thread wait for each event, or use `TSemaphore`.
///
/// **Time limits** are those of `IEvent::Wait`, with the same assertion, which comes after the look at the
/// events. A signal that counts when the time is over, but before the callbacks are removed, is in time.
///
/// **Null pointers** are failed assertions, "event != nullptr". When the host's hook lets that pass, the
/// position never counts.
///
/// **Threads.** The events must stay alive until the call has returned. As it adds and removes callbacks,
/// what `IEvent` says about deadlock holds for the thread that makes the call.
///
/// **Memory order.** What was done before the signals that counted is seen after the call.
///
/// **Failures** (`std::bad_alloc`, and what an event of the host's own throws) leave no callback behind.
#pragma once

#include "vansys/Export.h"
#include "vansys/IEvent.h"

#include <chrono>
#include <vector>

/// Waits until all events have counted. Returns false when the time is over before; for an empty vector
/// always, at the end of the time.
VANSYS_API bool WaitForAll(std::vector<IEvent *> const &events, std::chrono::milliseconds timeout);

/// Waits until one of the events has counted. Returns false when the time is over before; for an empty vector
/// always, at the end of the time.
VANSYS_API bool WaitForAny(std::vector<IEvent *> const &events, std::chrono::milliseconds timeout);

/// The same. On success, `index` is the position of the event that counted first, which is the first in the
/// vector when several were set from the start. Otherwise it is left alone.
VANSYS_API bool WaitForAny(std::vector<IEvent *> const &events, std::chrono::milliseconds timeout,
                           unsigned int &index);
