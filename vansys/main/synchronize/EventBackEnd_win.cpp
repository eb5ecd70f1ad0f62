#include "main/synchronize/EventBackEnd.h"

#include "main/platform/Windows.h"

#include <atomic>

namespace vansys::detail
{

static_assert(EventBackEnd::Infinite == INFINITE);

// The handle is not checked: without one, every call on it fails and every wait is false.
EventBackEnd::EventBackEnd(EventReset reset) noexcept
    : m_reset(reset),
      m_handle(CreateEventW(nullptr, reset == EventReset::Manual, FALSE, nullptr))
{
}

EventBackEnd::~EventBackEnd()
{
    CloseHandle(m_handle);
}

// The fences make sequential consistency a matter of this file and not of how the kernel is built.

void EventBackEnd::Set() noexcept
{
    SetEvent(m_handle);
    std::atomic_thread_fence(std::memory_order_seq_cst);
}

// The kernel does both at once.
void const *EventBackEnd::SetWithoutWaking() noexcept
{
    Set();
    return nullptr;
}

void EventBackEnd::Wake(void const *) noexcept {}

void EventBackEnd::Reset() noexcept
{
    ResetEvent(m_handle);
}

bool EventBackEnd::Wait(std::uint32_t milliseconds) noexcept
{
    std::atomic_thread_fence(std::memory_order_seq_cst);
    return WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
}

} // namespace vansys::detail
