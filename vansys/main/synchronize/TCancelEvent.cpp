#include "vansys/TCancelEvent.h"

#include "vansys/TRecursiveMutex.h"
#include "vansys/ThrowLogicException.h"

#include "main/synchronize/EventCore.h"

#include <mutex>
#include <set>
#include <utility>

using namespace vansys::detail;

using Child = RefCntPtr<TCancelEvent, RefCntObject>;

namespace
{

/// Goes on when the child is null and the host's hook lets that pass.
void SignalChild(Child const &child)
{
    if (TCancelEvent const *const event = child.operator->()) // asserts that it is not null
        event->Signal();
}

} // namespace

class TCancelEvent::Implementation
{
public:
    EventCore &Core() { return m_core; }

    void Signal()
    {
        m_core.Signal();
        std::lock_guard const lock(m_mutex);
        // By address, as what a signal sets off may change the children. The copy keeps the child alive.
        for (auto next = m_childEvents.begin(); next != m_childEvents.end();)
        {
            Child const child = *next;
            SignalChild(child);
            next = m_childEvents.upper_bound(child);
        }
    }

    void Add(Child const &child)
    {
        std::lock_guard const lock(m_mutex);
        bool const inserted = m_childEvents.insert(child).second;
        if (!inserted)
            ThrowLogicException("vansys/main/synchronize/TEvent", 107,
                                "Attempted to insert duplicate event.");
        // Under the lock that a signal takes for its walk: either that walk finds the child, or this finds
        // the event set.
        if (!m_core.IsSet())
            return;
        try
        {
            SignalChild(child);
        }
        catch (...)
        {
            if (inserted)
                m_childEvents.erase(child);
            throw;
        }
    }

    void Remove(Child const &child)
    {
        std::lock_guard const lock(m_mutex);
        auto const it = m_childEvents.find(child);
        if (it == m_childEvents.end())
            ThrowLogicException("vansys/main/synchronize/TEvent", 118, "it != m_childEvents.end()");
        else
            m_childEvents.erase(it);
    }

private:
    // The children go first when an event is destroyed, then the mutex, then the core.
    EventCore m_core{EventReset::Manual};
    TRecursiveMutex m_mutex; // guards m_childEvents, and is held while they are signalled
    std::set<Child> m_childEvents;
};

TCancelEvent::TCancelEvent() : m_implementation(new Implementation) {}

TCancelEvent::~TCancelEvent()
{
    delete m_implementation;
}

void TCancelEvent::Signal() const
{
    m_implementation->Signal();
}

bool TCancelEvent::IsSet() const
{
    return m_implementation->Core().IsSet();
}

bool TCancelEvent::Wait(std::chrono::milliseconds timeout) const
{
    return m_implementation->Core().Wait(timeout);
}

bool TCancelEvent::Wait() const
{
    return m_implementation->Core().Wait();
}

void TCancelEvent::Reset() const
{
    m_implementation->Core().Reset();
}

void TCancelEvent::AddOnSignalCallback(void *key, std::function<void()> callback) const
{
    m_implementation->Core().AddOnSignalCallback(key, std::move(callback));
}

void TCancelEvent::RemoveOnSignalCallback(void *key) const
{
    m_implementation->Core().RemoveOnSignalCallback(key);
}

void TCancelEvent::Add(RefCntPtr<TCancelEvent, RefCntObject> child) const
{
    m_implementation->Add(child);
}

void TCancelEvent::Remove(RefCntPtr<TCancelEvent, RefCntObject> child) const
{
    m_implementation->Remove(child);
}
