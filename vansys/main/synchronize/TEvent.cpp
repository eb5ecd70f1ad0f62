#include "vansys/TEvent.h"

#include "main/synchronize/EventCore.h"

#include <utility>

using namespace vansys::detail;

TEvent::TEvent(bool initiallySet) : m_core(new EventCore(EventReset::Manual))
{
    if (initiallySet)
        m_core->Signal();
}

TEvent::~TEvent()
{
    delete m_core;
}

void TEvent::Signal() const
{
    m_core->Signal();
}

bool TEvent::IsSet() const
{
    return m_core->IsSet();
}

bool TEvent::Wait(std::chrono::milliseconds timeout) const
{
    return m_core->Wait(timeout);
}

bool TEvent::Wait() const
{
    return m_core->Wait();
}

void TEvent::Reset() const
{
    m_core->Reset();
}

void TEvent::AddOnSignalCallback(void *key, std::function<void()> callback) const
{
    m_core->AddOnSignalCallback(key, std::move(callback));
}

void TEvent::RemoveOnSignalCallback(void *key) const
{
    m_core->RemoveOnSignalCallback(key);
}
