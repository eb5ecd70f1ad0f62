#include "main/synchronize/SemaphoreBackEnd_linux.h"

#include "main/platform/Clock.h"

#include <chrono>

namespace vansys::detail
{

bool SemaphoreBackEnd::SleepAndTake(std::uint32_t milliseconds) noexcept
{
    bool const isLimited = milliseconds != NoTimeLimit;
    auto const deadline =
        isLimited ? Clock::Now() + std::chrono::milliseconds(milliseconds) : Clock::TimePoint();

    m_sleepers.fetch_add(1, std::memory_order_seq_cst);
    bool isTaken = TryTake();
    bool isTimeLeft = true;
    while (!isTaken && isTimeLeft)
    {
        if (isLimited)
            isTimeLeft = FutexWaitUntil(m_units, 0, deadline);
        else
            FutexWait(m_units, 0);
        // Also when the time is over: a unit may have come with the end of it.
        isTaken = TryTake();
    }
    m_sleepers.fetch_sub(1, std::memory_order_relaxed);
    return isTaken;
}

} // namespace vansys::detail
