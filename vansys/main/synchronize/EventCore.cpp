#include "main/synchronize/EventCore.h"

#include "vansys/ThrowLogicException.h"

#include <mutex>
#include <utility>

namespace vansys::detail
{

/// A walk over the callbacks. Created before the lock is taken, so that it ends after the release.
class EventCore::Walk
{
public:
    Walk() noexcept : m_outer(std::exchange(t_innermost, this)) {}
    Walk(Walk const &) = delete;
    Walk &operator=(Walk const &) = delete;

    ~Walk()
    {
        t_innermost = m_outer;
        EventBackEnd::Wake(m_sleepers);
    }

    /// Of this thread, or null.
    static Walk *Innermost() noexcept { return t_innermost; }

    /// The key of the callback that is running.
    void *m_key = nullptr;

    /// Has them woken when the walk is over. Others before them are woken now: one late wake is enough for
    /// the usual case, that of a single thread.
    void WakeLate(void const *sleepers) noexcept { EventBackEnd::Wake(std::exchange(m_sleepers, sleepers)); }

private:
    static thread_local Walk *t_innermost;

    Walk *const m_outer;
    void const *m_sleepers = nullptr;
};

thread_local constinit EventCore::Walk *EventCore::Walk::t_innermost = nullptr;

void EventCore::Signal()
{
    m_backEnd.Set();
    // Without callbacks, no lock. Whoever adds one and then finds the event not set is not missed: both the
    // look at the count and that at the event are sequentially consistent, so when this finds no callback,
    // the other finds the event set.
    if (m_callbackCount.load() != 0)
        RunCallbacks();
}

void EventCore::RunCallbacks()
{
    Walk walk;
    std::lock_guard const lock(m_mutex);
    // By key, as each callback may change the table.
    for (auto next = m_callbacks.begin(); next != m_callbacks.end();)
    {
        walk.m_key = next->first;
        std::shared_ptr<Callback> const callback = next->second;
        (*callback)();
        next = m_callbacks.upper_bound(walk.m_key);
    }
}

void EventCore::SetForRemover(EventBackEnd &event, void const *key)
{
    Walk *const walk = Walk::Innermost();
    // A callback may be called by something else than this walk, which then may go on for longer than those
    // threads have to wait for the lock.
    if (walk && walk->m_key == key)
        walk->WakeLate(event.SetWithoutWaking());
    else
        event.Set();
}

// What a callback owns may run code of its own when it is destroyed. Both functions below therefore let go of
// the mutex before they let go of the callback that was in the table.

void EventCore::AddOnSignalCallback(void *key, std::function<void()> callback)
{
    auto entry = std::make_shared<Callback>(std::move(callback));
    std::lock_guard const lock(m_mutex);
    m_callbacks[key].swap(entry);
    m_callbackCount.store(m_callbacks.size());
}

void EventCore::RemoveOnSignalCallback(void *key)
{
    decltype(m_callbacks)::node_type entry;
    std::lock_guard const lock(m_mutex);
    entry = m_callbacks.extract(key);
    m_callbackCount.store(m_callbacks.size());
}

std::uint32_t EventCore::CheckedMilliseconds(std::chrono::milliseconds timeout)
{
    auto const count = timeout.count();
    // The place by which hosts know this assertion, on every system.
    if (count < 0)
        ThrowLogicException("vansys/main/synchronize/TEventBase_win", 65, "timeout.count() >= 0");
    // When a hook lets a negative count pass, its low bits count; all of them set, for -1, are no limit.
    return count >= EventBackEnd::Infinite ? EventBackEnd::Infinite : static_cast<std::uint32_t>(count);
}

} // namespace vansys::detail
