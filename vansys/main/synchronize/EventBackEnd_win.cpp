#include "main/synchronize/EventBackEnd.h"

#include "main/platform/Handle.h"
#include "main/platform/Windows.h"

#include <atomic>

namespace vansys::detail
{

static_assert(EventBackEnd::Infinite == INFINITE);

class EventBackEnd::State
{
public:
    // Not checked: without a handle, every call on it fails and every wait is false.
    explicit State(EventReset reset)
        : m_handle(CreateEventW(nullptr, reset == EventReset::Manual, FALSE, nullptr))
    {
    }

    void Set() { SetEvent(m_handle.Get()); }
    void Reset() { ResetEvent(m_handle.Get()); }
    bool Wait(DWORD milliseconds)
    {
        return WaitForSingleObject(m_handle.Get(), milliseconds) == WAIT_OBJECT_0;
    }

private:
    Handle const m_handle;
};

EventBackEnd::EventBackEnd(EventReset reset) noexcept : m_state(reset) {}

EventBackEnd::~EventBackEnd() = default;

// The fences make sequential consistency a matter of this file and not of how the kernel is built.

void EventBackEnd::Set() noexcept
{
    m_state->Set();
    std::atomic_thread_fence(std::memory_order_seq_cst);
}

void EventBackEnd::Reset() noexcept
{
    m_state->Reset();
}

bool EventBackEnd::Wait(std::uint32_t milliseconds) noexcept
{
    std::atomic_thread_fence(std::memory_order_seq_cst);
    return m_state->Wait(milliseconds);
}

} // namespace vansys::detail
