/// @file
/// EventCore: what the events have in common.
#pragma once

#include "vansys/TRecursiveMutex.h"

#include "main/platform/Atomic.h"
#include "main/synchronize/EventBackEnd.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace vansys::detail
{

/// An event with its table of callbacks, and the rules about time limits. Its functions do what those of the
/// same name in `IEvent` say.
class EventCore
{
public:
    explicit EventCore(EventReset reset) : m_backEnd(reset) {}

    void Signal();

    bool IsSet() noexcept { return m_backEnd.Wait(0); }

    bool Wait() noexcept { return m_backEnd.Wait(EventBackEnd::Infinite); }

    bool Wait(std::chrono::milliseconds timeout) { return m_backEnd.Wait(CheckedMilliseconds(timeout)); }

    void Reset() noexcept { m_backEnd.Reset(); }

    void AddOnSignalCallback(void *key, std::function<void()> callback);
    void RemoveOnSignalCallback(void *key);

    /// Sets `event`, on behalf of the callback of `key`. When it is called by that callback, the threads that
    /// sleep on the event are woken only after the lock of the callbacks has been released. For threads that
    /// go on to remove the callback, so that they do not run into that lock.
    static void SetForRemover(EventBackEnd &event, void const *key);

    /// The time limit as a back end takes it. Asserts that it is not negative.
    static std::uint32_t CheckedMilliseconds(std::chrono::milliseconds timeout);

private:
    using Callback = std::function<void()>;

    class Walk;

    void RunCallbacks();

    EventBackEnd m_backEnd;
    TRecursiveMutex m_mutex; // guards m_callbacks, and is held while they run
    // By address of the key. Shared, so that a callback that takes itself out of the table lives until it
    // returns; and never copied, as a callback may change its own state from one signal to the next.
    std::map<void *, std::shared_ptr<Callback>> m_callbacks;
    Atomic<std::size_t> m_callbackCount{0}; // changed with m_callbacks, read without the mutex
    std::vector<void *> m_pointers;         // reserved: nothing fills it
};

} // namespace vansys::detail
