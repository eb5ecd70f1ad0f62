#include "vansys/TCountdownEvent.h"

#include "vansys/TEvent.h"
#include "vansys/TRecursiveMutex.h"

#include <mutex>
#include <utility>

namespace vansys::detail
{

class CountingEvent final : public TEvent
{
public:
    explicit CountingEvent(unsigned int count) : m_count(count), m_initialCount(count) {}

    void Signal() const override
    {
        std::lock_guard const lock(m_mutex);
        if (--m_count == 0)
            TEvent::Signal();
    }

    void Reset() const override
    {
        std::lock_guard const lock(m_mutex);
        m_count = m_initialCount;
        TEvent::Reset();
    }

private:
    unsigned int mutable m_count;
    unsigned int const m_initialCount;
    TRecursiveMutex mutable m_mutex; // guards m_count, and keeps it and the event in step
};

} // namespace vansys::detail

TCountdownEvent::TCountdownEvent(unsigned int count) : m_event(new vansys::detail::CountingEvent(count)) {}

TCountdownEvent::~TCountdownEvent()
{
    delete m_event;
}

void TCountdownEvent::Signal() const
{
    m_event->Signal();
}

bool TCountdownEvent::IsSet() const
{
    return m_event->IsSet();
}

bool TCountdownEvent::Wait(std::chrono::milliseconds timeout) const
{
    return m_event->Wait(timeout);
}

bool TCountdownEvent::Wait() const
{
    return m_event->Wait();
}

void TCountdownEvent::Reset() const
{
    m_event->Reset();
}

void TCountdownEvent::AddOnSignalCallback(void *key, std::function<void()> callback) const
{
    m_event->AddOnSignalCallback(key, std::move(callback));
}

void TCountdownEvent::RemoveOnSignalCallback(void *key) const
{
    m_event->RemoveOnSignalCallback(key);
}
