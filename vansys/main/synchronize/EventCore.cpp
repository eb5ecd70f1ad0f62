#include "main/synchronize/EventCore.h"

#include "vansys/ThrowLogicException.h"

#include <mutex>
#include <utility>

namespace vansys::detail
{

/// A walk over the callbacks, under the mutex. The outermost one hands over the retired callbacks at its end.
class EventCore::Walk
{
public:
    Walk(EventCore &core, decltype(m_retired) &retired) : m_core(core), m_taken(retired) { ++m_core.m_walks; }
    Walk(Walk const &) = delete;
    Walk &operator=(Walk const &) = delete;

    ~Walk()
    {
        if (--m_core.m_walks == 0)
            m_taken.swap(m_core.m_retired);
    }

private:
    EventCore &m_core;
    decltype(m_retired) &m_taken;
};

void EventCore::Signal()
{
    m_backEnd.Set();
    // Without callbacks, no lock. Whoever adds one and then finds the event not set is not missed: both the
    // look at the count and that at the event are sequentially consistent, so when this finds no callback,
    // the other finds the event set.
    if (m_callbackCount.load() != 0)
        RunCallbacks();
}

// What a callback owns may run code of its own when it is destroyed, and may even come back to this event or
// take other locks. So each of the functions below lets go of the mutex before it lets go of a callback: what
// it keeps them in is declared before the lock is taken.

void EventCore::RunCallbacks()
{
    decltype(m_retired) retired;
    std::lock_guard const lock(m_mutex);
    Walk const walk(*this, retired);
    // By key, as each callback may change the table.
    for (auto next = m_callbacks.begin(); next != m_callbacks.end();)
    {
        void *const key = next->first;
        next->second();
        next = m_callbacks.upper_bound(key);
    }
}

void EventCore::AddOnSignalCallback(void *key, std::function<void()> callback)
{
    Table table; // all memory is allocated here
    table.emplace(key, std::move(callback));
    Table::node_type replaced;
    std::lock_guard const lock(m_mutex);
    replaced = Extract(key);
    m_callbacks.insert(table.extract(table.begin()));
    m_callbackCount.store(m_callbacks.size());
}

void EventCore::RemoveOnSignalCallback(void *key)
{
    Table::node_type removed;
    std::lock_guard const lock(m_mutex);
    removed = Extract(key);
    m_callbackCount.store(m_callbacks.size());
}

EventCore::Table::node_type EventCore::Extract(void *key)
{
    Table::node_type callback = m_callbacks.extract(key);
    if (m_walks == 0 || !callback)
        return callback;
    m_retired.insert(std::move(callback));
    return {};
}

std::uint32_t EventCore::CheckedMilliseconds(std::chrono::milliseconds timeout)
{
    auto const count = timeout.count();
    // Under one name on every system, so that reports can be compared.
    if (count < 0)
        ThrowLogicException("vansys/main/synchronize/TEventBase_win", 65, "timeout.count() >= 0");
    // When a hook lets a negative count pass, its low bits count; all of them set, for -1, are no limit.
    return count >= EventBackEnd::Infinite ? EventBackEnd::Infinite : static_cast<std::uint32_t>(count);
}

} // namespace vansys::detail
