/// @file
/// SemaphoreBackEnd of Linux: the number of units, and beside it the number of threads that sleep because
/// there were none.
#pragma once

#include "main/platform/Atomic.h"
#include "main/platform/Futex.h"
#include "main/synchronize/SemaphoreLimits.h"

#include <cerrno>
#include <cstdint>

namespace vansys::detail
{

/// A thread that is going to sleep first counts itself and then looks for a unit once more; who releases
/// first adds the unit and then looks for sleepers. All four steps are sequentially consistent, so one of the
/// two sees what the other did, and no unit lies beside a thread that sleeps for it.
///
/// The ways without waiting are here to be inlined into what the library exports.
class SemaphoreBackEnd
{
public:
    SystemError Open(std::uint32_t count) noexcept
    {
        if (count > MaxSemaphoreCount)
            return EINVAL;
        m_units.store(count, std::memory_order_relaxed);
        return NoError;
    }

    bool TryAcquire(std::uint32_t milliseconds) noexcept
    {
        return TryTake() || (milliseconds != 0 && SleepAndTake(milliseconds));
    }

    SystemError Acquire() noexcept
    {
        TryAcquire(NoTimeLimit);
        return NoError;
    }

    SystemError Release() noexcept
    {
        std::uint32_t units = m_units.load(std::memory_order_relaxed);
        do
        {
            if (units == MaxSemaphoreCount)
                return EOVERFLOW;
        } while (!m_units.compare_exchange_weak(units, units + 1, std::memory_order_seq_cst,
                                                std::memory_order_relaxed));
        if (m_sleepers.load(std::memory_order_seq_cst) != 0)
            FutexWakeOne(m_units);
        return NoError;
    }

private:
    bool TryTake() noexcept
    {
        std::uint32_t units = m_units.load(std::memory_order_seq_cst);
        while (units != 0)
        {
            if (m_units.compare_exchange_weak(units, units - 1, std::memory_order_acquire,
                                              std::memory_order_relaxed))
                return true;
        }
        return false;
    }

    bool SleepAndTake(std::uint32_t milliseconds) noexcept;

    FutexWord m_units{0};
    Atomic<std::uint32_t> m_sleepers{0};
};

} // namespace vansys::detail
