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

    /// The time limit as a back end takes it. Asserts that it is not negative.
    static std::uint32_t CheckedMilliseconds(std::chrono::milliseconds timeout);

private:
    using Table = std::map<void *, std::function<void()>>; // by address of the key

    class Walk;

    void RunCallbacks();

    /// Takes the callback out of the table. Returns it, or keeps it if it may be running.
    Table::node_type Extract(void *key);

    EventBackEnd m_backEnd;
    TRecursiveMutex m_mutex; // guards what follows, and is held while the callbacks run
    Table m_callbacks;
    int m_walks = 0;                                        // under way, one within the other
    std::multimap<void *, std::function<void()>> m_retired; // taken out of the table meanwhile
    Atomic<std::size_t> m_callbackCount{0}; // changed with m_callbacks, read without the mutex
};

} // namespace vansys::detail
