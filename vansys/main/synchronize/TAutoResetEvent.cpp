#include "vansys/TAutoResetEvent.h"

#include "main/synchronize/EventCore.h"

#include <utility>

using namespace vansys::detail;

TAutoResetEvent::TAutoResetEvent() : m_core(new EventCore(EventReset::Auto)) {}

TAutoResetEvent::~TAutoResetEvent()
{
    delete m_core;
}

void TAutoResetEvent::Signal() const
{
    m_core->Signal();
}

bool TAutoResetEvent::IsSet() const
{
    return m_core->IsSet();
}

bool TAutoResetEvent::Wait(std::chrono::milliseconds timeout) const
{
    return m_core->Wait(timeout);
}

bool TAutoResetEvent::Wait() const
{
    return m_core->Wait();
}

void TAutoResetEvent::Reset() const
{
    m_core->Reset();
}

void TAutoResetEvent::AddOnSignalCallback(void *key, std::function<void()> callback) const
{
    m_core->AddOnSignalCallback(key, std::move(callback));
}

void TAutoResetEvent::RemoveOnSignalCallback(void *key) const
{
    m_core->RemoveOnSignalCallback(key);
}
