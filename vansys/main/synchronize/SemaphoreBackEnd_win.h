/// @file
/// SemaphoreBackEnd of Windows: its semaphore.
#pragma once

#include "main/platform/Handle.h"
#include "main/platform/Windows.h"
#include "main/synchronize/SemaphoreLimits.h"

#include <cstdint>

namespace vansys::detail
{

class SemaphoreBackEnd
{
public:
    SystemError Open(std::uint32_t count) noexcept
    {
        m_handle = Handle(CreateSemaphoreW(nullptr, static_cast<LONG>(count),
                                           static_cast<LONG>(MaxSemaphoreCount), nullptr));
        return m_handle ? NoError : GetLastError();
    }

    bool TryAcquire(std::uint32_t milliseconds) noexcept
    {
        static_assert(NoTimeLimit == INFINITE);
        return WaitForSingleObject(m_handle.Get(), milliseconds) == WAIT_OBJECT_0;
    }

    SystemError Acquire() noexcept
    {
        return WaitForSingleObject(m_handle.Get(), INFINITE) == WAIT_FAILED ? GetLastError() : NoError;
    }

    SystemError Release() noexcept
    {
        return ReleaseSemaphore(m_handle.Get(), 1, nullptr) ? NoError : GetLastError();
    }

private:
    Handle m_handle;
};

} // namespace vansys::detail
